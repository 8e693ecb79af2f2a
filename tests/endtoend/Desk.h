#pragma once

#include "favourites/MainViewController.h"
#include "shell/AppDelegate.h"
#include "shell/MainWindowController.h"
#include "tests/support/AlertRecorder.h"
#include "tests/support/TemporaryDataHome.h"

#include <QTreeView>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

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
  // Quits and starts again, over the same store.
  void restart();
  // Offscreen no window manager gives the keyboard back when a window in front closes.
  void toFront();

  MainViewController& window() { return *content_; }
  std::shared_ptr<ServerItem> server(std::size_t place = 0) { return content_->myFavourite()->servers.at(place); }
  // The tab of the first favourite; it must have one.
  OperationTabLayout& tab();
  bool hasTab() { return content_->tabForServer(*server()) != nullptr; }
  // The connection form that is open.
  NewConnectionLayout& form() { return content_->newConnectionWindowController()->form().outlets(); }
  // Opens the form by a click on the button and waits until it has the keyboard.
  void openForm(const NSButton& button);
  // Clicks "New" in the tab, and chooses in the dialog that comes up.
  void newKey(const std::string& type);

  // The rows of the tree in sight, from the root on.
  Texts treeRows();
  // Both by the row's whole text; nothing happens if no row has it.
  void clickTreeRow(const std::string& text);
  void clickTriangle(const std::string& text);
  // Opens the favourite, waits until it has a row of this text and clicks it.
  void openDatabase(const std::string& favourite, const std::string& text);

  // What the table shows in a column, in all its rows.
  static Texts column(NSTableView& table, int number = 0);
  // The same in ascending order: a search has none.
  static Texts sortedKeys(NSTableView& table);
  // Brings the first row with this text into sight and clicks it.
  static void clickRow(NSTableView& table, const std::string& text);
  // Double-clicks the cell in the first row that has this text in the column, and types over what it holds.
  static void typeInCell(NSTableView& table, const std::string& text, int columnNumber, std::string_view typed);
  // A right click on the first row with this text, and a click on the item of the menu that comes up.
  static void chooseInMenu(NSTableView& table, const std::string& rowText, const std::string& item);
  // The same in the main menu.
  void chooseInMainMenu(const std::string& menu, const std::string& item);

  // Fills the field anew by hand.
  static void retype(const NSView& field, std::string_view text);
  static void chooseTitle(NSPopUpButton& popUp, const std::string& title);
  static void click(const NSView& view);

  void searchFor(std::string_view text);
  // Waits until the tab lists just these keys, given in ascending order.
  testing::AssertionResult lists(const Texts& keys);
  // Clicks the key and waits until its load has ended.
  void readKey(const std::string& key, const std::string& dataSize);
  // By a click, or by the keyboard. Expects that it succeeds, after these messages, each of which was answered.
  void save(Texts messages = {});
  void saveByKey();

  // Waits until the control reads this; false, and told what it reads, if it never does.
  static testing::AssertionResult becomes(const NSControl& control, std::string_view text);

  // A picture of the window in "pictures/NAME.png" beside the test program.
  void picture(const std::string& name);

  TemporaryDataHome dataHome;
  AlertRecorder alerts;

private:
  QTreeView& tree();
  QModelIndex treeIndex(const std::string& text);
  void expectSaved(Texts messages);
  static QPoint cellPlace(NSTableView& table, const std::string& text, int columnNumber);

  std::optional<AppDelegate> delegate_{std::in_place};
  std::optional<MainViewController> content_;
  std::optional<MainWindowController> controller_;
  // Of all windows so far: work on their queues may go on without one.
  std::vector<std::weak_ptr<ServerItem>> servers_;
};

}  // namespace tarn::test
