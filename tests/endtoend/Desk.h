#pragma once

#include <gtest/gtest.h>

#include <QTreeView>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "favourites/MainViewController.h"
#include "shell/AppDelegate.h"
#include "shell/MainWindowController.h"
#include "tests/support/AlertRecorder.h"
#include "tests/support/TemporaryDataHome.h"

namespace tarn::test {

// The whole program as main() puts it together, over a store file of its own, with the hand and the eye of the person
// who sits before it. Alerts are recorded and answer themselves.
class Desk : public testing::Test {
protected:
  using Texts = std::vector<std::string>;

  Desk();
  ~Desk() override;

  // Before the window opens.
  void storeFavourite(const std::string& name, int port, const std::string& password = "");
  void openWindow();
  // The window and all in it go away while everything else runs on.
  void dropWindow();

  MainViewController& window() { return *content_; }
  std::shared_ptr<ServerItem> server(std::size_t place = 0) { return content_->myFavourite()->servers.at(place); }
  // The tab of the first favourite; it must have one.
  OperationTabLayout& tab();
  bool hasTab() { return content_->tabForServer(*server()) != nullptr; }

  // The rows of the tree in sight, from the root on.
  Texts treeRows();
  // Both by the row's whole text; nothing happens if no row has it.
  void clickTreeRow(const std::string& text);
  void clickTriangle(const std::string& text);

  // What the table shows in a column, in all its rows.
  static Texts column(NSTableView& table, int number = 0);
  // The same in ascending order: a search has none.
  static Texts sortedKeys(NSTableView& table);
  // Brings the first row with this text into sight and clicks it.
  static void clickRow(NSTableView& table, const std::string& text);

  // Fills the field anew by hand.
  static void retype(NSTextField& field, std::string_view text);
  static void chooseTitle(NSPopUpButton& popUp, const std::string& title);
  static void click(const NSView& view);

  void searchFor(std::string_view text);

  // Waits until the control reads this; false, and told what it reads, if it never does.
  static testing::AssertionResult becomes(const NSControl& control, std::string_view text);

  // A picture of the window in "pictures/NAME.png" beside the test program.
  void picture(const std::string& name);

  TemporaryDataHome dataHome;
  AlertRecorder alerts;

private:
  QTreeView& tree();
  QModelIndex treeIndex(const std::string& text);

  AppDelegate delegate_;
  std::optional<MainViewController> content_;
  std::optional<MainWindowController> controller_;
  // Of all windows so far: work on their queues may go on without one.
  std::vector<std::weak_ptr<ServerItem>> servers_;
};

}  // namespace tarn::test
