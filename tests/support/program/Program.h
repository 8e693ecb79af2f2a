#pragma once

#include "favourites/MainViewController.h"
#include "shell/AppDelegate.h"
#include "shell/MainWindowController.h"
#include "tests/support/AlertRecorder.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/widgets/Hand.h"

#include <QModelIndex>
#include <QTreeView>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::test {

// The whole program as main() puts it together, over a store file of its own, used as by the person who sits before it.
// Alerts are recorded and answer themselves. What can't be done, or doesn't come about in time, throws a
// std::runtime_error that says so.
class Program {
public:
  using Texts = std::vector<std::string>;

  Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program();

  // Stores a favourite; before the window opens.
  void store(const std::string& name, int port, const std::string& password = "");
  void openWindow(QSize size = {});
  // The window and all in it go away while everything else runs on.
  void dropWindow();
  // Quits and starts again, over the same store.
  void restart();
  // Offscreen no window manager gives the keyboard back when a window in front closes.
  void toFront() { show(*content_->window().widget()); }

  MainViewController& content() { return *content_; }
  MainLayout& window() { return content_->outlets(); }
  // The favourite at this position of the list, and its tab: null if there is none.
  std::shared_ptr<ServerItem> server(std::size_t index = 0) { return content_->myFavourite()->servers.at(index); }
  ConnectionTabs::Tab tabOf(std::size_t index = 0) { return content_->tabForServer(*server(index)); }
  OperationTabLayout& tab(std::size_t index = 0) { return tabOf(index)->outlets(); }
  // The rows below the root, a selected one behind "*"; the tabs, the one in front in brackets; of that one the status,
  // how many databases are offered, the one on show, the keys, and whether the queue label says anything; the messages.
  std::string screen();

  // Opens the connection form by a click on the button, or chooses a type for a new key in the dialog behind "New".
  void openForm(const NSButton& button);
  void newKey(const std::string& type);
  // What is open.
  NewConnectionLayout& form() { return content_->newConnectionWindowController()->form().outlets(); }
  auto& typeDialog() { return content_->newKeyValueTypeSelectWindowController()->dialog().outlets(); }
  // Types each text and presses Tab, from the field that has the keyboard on.
  static void fillIn(const Texts& texts);

  // The rows of the tree in sight, from the root on. A row is named by the beginning of its text.
  Texts rows();
  void clickRow(const std::string& text);
  void clickTriangle(const std::string& text);
  // By code, so that no tab opens.
  void selectRows(const std::vector<int>& rows) { window().serverSelection.selectRowIndexes(rows); }
  // Opens the favourite's row, waits until there is such a row, and clicks it.
  void openDatabase(const std::string& favourite, const std::string& text);
  // Until nothing runs or waits on the server's queue, and what it posted has run.
  void waitForIdle(std::size_t index = 0);

  // Brings the first row with this text into sight and clicks it.
  static void clickRow(NSTableView& table, const std::string& text);
  // Double-clicks the cell in the first row that has this text in the column, and types over what it holds.
  static void typeInCell(NSTableView& table, const std::string& text, int column, std::string_view typed);
  // A right click on the first row with this text, and a click on the item of the menu that comes up.
  static void chooseInMenu(NSTableView& table, const std::string& rowText, const std::string& item);
  // The same in the main menu.
  void chooseInMainMenu(const std::string& menu, const std::string& item);
  // Selects what the field holds and types over it.
  static void retype(const NSView& field, std::string_view text);

  // In the first favourite's tab. Keys are given in ascending order: a search has none.
  void searchFor(std::string_view text);
  void waitForKeys(const Texts& keys);
  void waitForKeys(int count);
  // Clicks the key and waits until its load has ended.
  void readKey(const std::string& key, const std::string& dataSize);
  // By a click, or by the keyboard. Succeeds, after these messages, each of which was answered.
  void save(Texts messages = {}, bool byKey = false);

  static void waitForText(const NSControl& control, const std::string& text);
  static void waitFor(const std::function<bool()>& done, const std::function<std::string()>& elseSays);

  TemporaryDataHome dataHome;
  AlertRecorder alerts;

private:
  QTreeView& tree();
  QModelIndex treeIndex(const std::string& text);

  std::optional<AppDelegate> delegate_{std::in_place};
  std::optional<MainViewController> content_;
  std::optional<MainWindowController> controller_;
  // Of all windows so far: work on their queues may go on without one.
  std::vector<std::weak_ptr<ServerItem>> servers_;
};

}  // namespace tarn::test
