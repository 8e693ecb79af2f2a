#pragma once

#include "favourites/FavouritesStore.h"
#include "favourites/MainViewController.h"
#include "platform/appkit/table/TableViewWidget.h"
#include "resources/Resources.h"
#include "shell/AppDelegate.h"
#include "shell/MainWindowController.h"
#include "tests/support/AlertRecorder.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/widgets/Hand.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenuBar>
#include <QTreeView>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tarn::test {

// The whole program as main() puts it together, over a store file of its own, used as by the person who sits before it.
// Alerts are recorded and answer themselves. What can't be done, or doesn't come about in time, throws a
// std::runtime_error that says so.
class Program {
public:
  using Texts = std::vector<std::string>;

  Program() {
    if (!loadResources()) throw std::runtime_error("the resources can't be loaded");
  }
  ~Program() {
    for (const auto& held : servers_)
      if (const auto server = held.lock()) server->closeConnection();
    dropWindow();
    // What still runs would tell the next test of its failures.
    for (const auto& held : servers_)
      waitUntil([server = held.lock()] { return !server || server->operationQueue().operationCount() == 0; });
    settle();
  }

  // Stores a favourite; before the window opens.
  void store(const std::string& name, int port, const std::string& password = "") {
    ServerItem favourite;
    favourite.setConnectionName(name);
    favourite.setServerIp("127.0.0.1");
    favourite.setServerPort(port);
    favourite.setAuth(password);
    favourite.setDefaultCharset("utf8");
    FavouritesStore().insertRecord(favourite);
    delegate_->saveContext();
  }
  void openWindow(QSize size = {}) {
    content_.emplace();
    std::ranges::copy(content_->myFavourite()->servers, std::back_inserter(servers_));
    controller_.emplace(*content_);
    controller_->showWindow();
    show(*content_->window().widget(), size);
  }
  // The window and all in it go away while everything else runs on.
  void dropWindow() {
    controller_.reset();
    content_.reset();
  }
  // Quits and starts again, over the same store.
  void restart() {
    dropWindow();
    delegate_.emplace();
    openWindow();
  }
  // Offscreen no window manager gives the keyboard back when a window in front closes.
  void toFront() { show(*content_->window().widget()); }

  MainViewController& content() { return *content_; }
  MainLayout& window() { return content_->outlets(); }
  // The favourite at this position of the list, and its tab: null if there is none.
  std::shared_ptr<ServerItem> server(std::size_t index = 0) { return content_->myFavourite()->servers.at(index); }
  ConnectionTabs::Tab tabOf(std::size_t index = 0) { return content_->tabForServer(*server(index)); }
  OperationTabLayout& tab(std::size_t index = 0) { return tabOf(index)->outlets(); }
  // What is open.
  NewConnectionLayout& form() { return content_->newConnectionWindowController()->content().outlets(); }
  auto& typeDialog() { return content_->newKeyValueTypeSelectWindowController()->content().outlets(); }

  // The rows below the root, a selected one behind "*"; the tabs, the one in front in brackets; of that one the status,
  // how many databases are offered, the one on show, the keys, and whether the queue label says anything; the messages.
  std::string screen() {
    Texts parts(1);
    const std::vector<int> selected = window().serverSelection.selectedRowIndexes();
    for (int row = 0; const std::string& text : rows())
      if (row++ > 0) parts[0] += (row > 2 ? " " : "") + std::string(std::ranges::count(selected, row - 1), '*') + text;
    const auto front = window().mainTab.selectedTabViewItem();
    for (const auto& item : window().mainTab.tabViewItems())
      parts.push_back(item == front ? "[" + item->label() + "]" : item->label());
    if (front) {
      const auto tab = std::dynamic_pointer_cast<OperationTabViewController>(front->viewController());
      OperationTabLayout& shown = tab->outlets();
      parts.push_back(shown.labStatus.stringValue().substr(std::string_view("Status:").size()) + " " +
                      std::to_string(itemCount(shown.popDatabase)) + " db" + std::to_string(tab->shownDatabase()));
      for (const std::string& key : sortedKeys(shown))
        parts.back() += " " + key;
      if (!shown.labDealingQueue.stringValue().empty()) parts.back() += " queue";
    }
    std::ranges::copy(alerts.messages(), std::back_inserter(parts));
    return joined(parts);
  }

  // Opens the connection form by a click on the button, or chooses a type for a new key in the dialog behind "New".
  void openForm(const NSButton& button) {
    click(button);
    waitUntilActive(form().window);
  }
  void newKey(const std::string& type) {
    click(tab().btnNew);
    waitUntilActive(typeDialog().window);
    choose(typeDialog().popValueType, type);
    click(typeDialog().btnConfirm);
    toFront();
    waitForText(tab().labType, "Type: " + type + " (New)");
  }
  // Types each text and presses Tab, from the field that has the keyboard on.
  static void fillIn(const Texts& texts) {
    for (const std::string& text : texts) {
      type(text);
      press(Qt::Key_Tab);
    }
  }
  // Types over what the field holds.
  static void retype(const NSView& field, std::string_view text) {
    click(field);
    keys("Ctrl+A Del");
    type(text);
  }

  // The rows of the tree in sight, from the root on. A row is named by the beginning of its text.
  Texts rows() {
    settle();
    Texts texts;
    for (QModelIndex row = tree().model()->index(0, 0); row.isValid(); row = tree().indexBelow(row))
      texts.push_back(row.data().toString().toStdString());
    return texts;
  }
  void clickRow(const std::string& text) { click(*tree().viewport(), rowRect(text).center()); }
  void clickTriangle(const std::string& text) {
    const QRect row = rowRect(text);
    click(*tree().viewport(), QPoint(row.left() - tree().indentation() / 2, row.center().y()));
  }
  // By code, so that no tab opens.
  void selectRows(const std::vector<int>& rows) { window().serverSelection.selectRowIndexes(rows); }
  // Opens the favourite's row, waits until there is such a row, and clicks it.
  void openDatabase(const std::string& favourite, const std::string& text) {
    clickTriangle(favourite);
    const auto isThere = [&](const std::string& row) { return row.starts_with(text); };
    waitFor([&] { return std::ranges::any_of(rows(), isThere) ? text : joined(rows()); }, text);
    clickRow(text);
  }
  // Until nothing runs or waits on the server's queue, and what it posted has run.
  void waitForIdle(std::size_t index = 0) {
    const auto isIdle = [&] { return server(index)->operationQueue().operationCount() == 0; };
    // What the last block has posted may queue the next one.
    waitFor([&] { return isIdle() && (settle(), isIdle()) ? "idle" : "work on the queue"; }, "idle");
    settle();
  }

  // Brings the first row with this text into sight and clicks it.
  static void clickRow(NSTableView& table, const std::string& text) {
    const auto [cells, centre] = cell(table, text, 0);
    click(cells, centre);
  }
  // Double-clicks the cell in the first row that has this text in the column, and types over what it holds.
  static void typeInCell(NSTableView& table, const std::string& text, int column, std::string_view typed) {
    const auto [cells, centre] = cell(table, text, column);
    doubleClick(cells, centre);
    press(Qt::Key_A, Qt::ControlModifier);
    type(typed);
  }
  // A right click on the first row with this text, and a click on the item of the menu that comes up.
  static void chooseInMenu(NSTableView& table, const std::string& rowText, const std::string& item) {
    const auto [cells, centre] = cell(table, rowText, 0);
    click(cells, centre, Qt::RightButton);
    QContextMenuEvent event(QContextMenuEvent::Mouse, centre, cells.mapToGlobal(centre));
    QApplication::sendEvent(&cells, &event);
    settle();
    clickItem(QApplication::activePopupWidget(), item);
  }
  // The same in the main menu.
  void chooseInMainMenu(const std::string& menu, const std::string& item) {
    clickItem(content_->window().widget()->findChild<QMenuBar*>(), menu);
    clickItem(QApplication::activePopupWidget(), item);
  }

  // In the first favourite's tab. Keys are given in ascending order: a search has none.
  void searchFor(std::string_view text) {
    retype(tab().txtSearchKey, text);
    press(Qt::Key_Return);
  }
  void waitForKeys(const Texts& keys) {
    waitFor([&] { return joined(sortedKeys(tab())); }, joined(keys));
  }
  void waitForKeys(int count) {
    waitFor([&] { return std::to_string(tab().tableKeys.numberOfRows()); }, std::to_string(count));
    waitForIdle();
  }
  // Clicks the key and waits until its load has ended.
  void readKey(const std::string& key, const std::string& dataSize) {
    clickRow(tab().tableKeys, key);
    waitForText(tab().labDataSize, dataSize);
  }
  // By a click, or by the keyboard. Succeeds, after these messages, each of which was answered.
  void save(Texts messages = {}, bool byKey = false) {
    byKey ? press(Qt::Key_S, Qt::ControlModifier) : click(tab().btnSave);
    messages.push_back("Saved.");
    // A button that is pressed by its chord shows it for a moment first.
    waitFor([&] { return joined(alerts.messages()); }, joined(messages));
    alerts.clear();
  }
  static void waitForText(const NSControl& control, const std::string& text) {
    waitFor([&] { return control.stringValue(); }, text);
  }

  TemporaryDataHome dataHome;
  AlertRecorder alerts;

private:
  static void waitFor(const std::function<std::string()>& shown, const std::string& expected) {
    if (!waitUntil([&] { return shown() == expected; }))
      throw std::runtime_error("waited in vain: there is \"" + shown() + "\", not \"" + expected + "\"");
  }
  static void waitUntilActive(const NSView& window) {
    waitFor([&] { return window.widget()->isActiveWindow() ? "active" : "inactive"; }, "active");
  }
  static std::string joined(const Texts& texts) {
    std::string all;
    for (const std::string& text : texts)
      all += (&text == &texts.front() ? "" : " | ") + text;
    return all;
  }
  static Texts sortedKeys(OperationTabLayout& tab) {
    Texts keys = texts(tab.tableKeys);
    std::ranges::sort(keys);
    return keys;
  }

  QTreeView& tree() { return dynamic_cast<QTreeView&>(*window().serverSelection.widget()); }
  QRect rowRect(const std::string& text) {
    QModelIndex row = tree().model()->index(0, 0);
    while (row.isValid() && !row.data().toString().toStdString().starts_with(text))
      row = tree().indexBelow(row);
    if (!row.isValid()) throw std::runtime_error("no row \"" + text + "\" among " + joined(rows()));
    return tree().visualRect(row);
  }
  // What takes the clicks, and where.
  static std::pair<QWidget&, QPoint> cell(NSTableView& table, const std::string& text, int column) {
    const Texts shown = texts(table, column);
    const auto row = static_cast<int>(std::ranges::find(shown, text) - shown.begin());
    if (row == table.numberOfRows()) throw std::runtime_error("no cell \"" + text + "\" among " + joined(shown));
    table.scrollRowToVisible(row);
    auto& widget = dynamic_cast<TableViewWidget&>(*table.widget());
    return {*widget.viewport(), widget.cellRect(row, column).center()};
  }
  // Of a menu, or of the bar of menus.
  static void clickItem(QWidget* menu, const std::string& text) {
    const auto items = menu ? menu->actions() : QList<QAction*>();
    const auto item = std::ranges::find(items, QString::fromStdString(text), &QAction::text);
    if (item == items.end()) throw std::runtime_error("no item \"" + text + "\"");
    auto* const popUp = qobject_cast<QMenu*>(menu);
    click(*menu,
          (popUp ? popUp->actionGeometry(*item) : dynamic_cast<QMenuBar*>(menu)->actionGeometry(*item)).center());
  }

  std::optional<AppDelegate> delegate_{std::in_place};
  std::optional<MainViewController> content_;
  std::optional<MainWindowController> controller_;
  // Of all windows so far: work on their queues may go on without one.
  std::vector<std::weak_ptr<ServerItem>> servers_;
};

// A program of each case's own.
class ProgramTest : public testing::Test, protected Program {
protected:
  struct Favourite {
    std::string name;
    int port = 1;
    std::string password = {};
  };
  // The window over these.
  void open(const std::vector<Favourite>& favourites) {
    for (const auto& [name, port, password] : favourites)
      store(name, port, password);
    openWindow();
  }
  // Waits until the screen is as told and the posted work is done. Messages and queue label are blank for the next one.
  void see(const std::string& expected) {
    waitUntil([&] { return screen() == expected; });
    settle();
    EXPECT_EQ(screen(), expected);
    alerts.clear();
    for (std::size_t index = 0; index < content().myFavourite()->servers.size(); ++index)
      if (tabOf(index)) tab(index).labDealingQueue.setStringValue("");
  }
  void see(const std::function<void()>& step, const std::string& expected) {
    step();
    see(expected);
  }
};

}  // namespace tarn::test
