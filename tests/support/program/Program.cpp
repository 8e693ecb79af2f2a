#include "tests/support/program/Program.h"

#include "favourites/FavouritesStore.h"
#include "platform/appkit/table/TableViewWidget.h"
#include "resources/Resources.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace tarn::test {

namespace {

using std::string_literals::operator""s;

std::string joined(const Program::Texts& texts) {
  std::string all;
  for (const std::string& text : texts)
    all += "\"" + text + "\" ";
  return all;
}

// A search has no order.
Program::Texts sortedKeys(OperationTabLayout& tab) {
  Program::Texts keys = texts(tab.tableKeys);
  std::ranges::sort(keys);
  return keys;
}

void waitUntilActive(const NSView& window) {
  Program::waitFor([&] { return window.widget()->isActiveWindow(); }, [] { return "a window without the keyboard"s; });
}

// What takes the clicks, and where: the first row with this text in the column, brought into sight.
std::pair<QWidget&, QPoint> cell(NSTableView& table, const std::string& text, int column) {
  const Program::Texts shown = texts(table, column);
  const auto found = std::ranges::find(shown, text);
  if (found == shown.end()) throw std::runtime_error("no cell \"" + text + "\" among " + joined(shown));
  const int row = static_cast<int>(found - shown.begin());
  table.scrollRowToVisible(row);
  auto& widget = dynamic_cast<TableViewWidget&>(*table.widget());
  return {*widget.viewport(), widget.cellRect(row, column).center()};
}

template <typename Menu>
void clickItem(Menu& menu, const std::string& text) {
  const auto items = menu.actions();
  const auto item = std::ranges::find(items, QString::fromStdString(text), &QAction::text);
  if (item == items.end()) throw std::runtime_error("no item \"" + text + "\"");
  click(menu, menu.actionGeometry(*item).center());
}

}  // namespace

Program::Program() {
  if (!loadResources()) throw std::runtime_error("the resources can't be loaded");
}

Program::~Program() {
  for (const auto& held : servers_) {
    if (const auto server = held.lock()) server->closeConnection();
  }
  dropWindow();
  // What still runs would tell the next test of its failures.
  for (const auto& held : servers_) {
    const auto isOver = [](const auto& server) { return !server || server->operationQueue().operationCount() == 0; };
    waitUntil([&] { return isOver(held.lock()); });
  }
  settle();
}

void Program::store(const std::string& name, int port, const std::string& password) {
  ServerItem favourite;
  favourite.setConnectionName(name);
  favourite.setServerIp("127.0.0.1");
  favourite.setServerPort(port);
  favourite.setAuth(password);
  favourite.setDefaultCharset("utf8");
  FavouritesStore().insertRecord(favourite);
  delegate_->saveContext();
}

void Program::openWindow(QSize size) {
  content_.emplace();
  std::ranges::copy(content_->myFavourite()->servers, std::back_inserter(servers_));
  controller_.emplace(*content_);
  controller_->showWindow();
  show(*content_->window().widget(), size);
}

void Program::dropWindow() {
  controller_.reset();
  content_.reset();
}

void Program::restart() {
  dropWindow();
  delegate_.reset();
  delegate_.emplace();
  openWindow();
}

void Program::openForm(const NSButton& button) {
  click(button);
  waitUntilActive(form().window);
}

void Program::newKey(const std::string& type) {
  click(tab().btnNew);
  waitUntilActive(typeDialog().window);
  choose(typeDialog().popValueType, type);
  click(typeDialog().btnConfirm);
  toFront();
  waitForText(tab().labType, "Type: " + type + " (New)");
}

void Program::fillIn(const Texts& texts) {
  for (const std::string& text : texts) {
    type(text);
    press(Qt::Key_Tab);
  }
}

QTreeView& Program::tree() {
  return dynamic_cast<QTreeView&>(*window().serverSelection.widget());
}

Program::Texts Program::rows() {
  settle();
  Texts texts;
  for (QModelIndex row = tree().model()->index(0, 0); row.isValid(); row = tree().indexBelow(row))
    texts.push_back(row.data().toString().toStdString());
  return texts;
}

QModelIndex Program::treeIndex(const std::string& text) {
  QModelIndex row = tree().model()->index(0, 0);
  while (row.isValid() && !row.data().toString().toStdString().starts_with(text))
    row = tree().indexBelow(row);
  if (!row.isValid()) throw std::runtime_error("no row \"" + text + "\" among " + joined(rows()));
  return row;
}

std::string Program::screen() {
  std::string all;
  const Texts names = rows();
  const std::vector<int> selected = window().serverSelection.selectedRowIndexes();
  for (int row = 1; row < static_cast<int>(names.size()); ++row)
    all += (row > 1 ? " " : "") + std::string(std::ranges::count(selected, row) ? "*" : "") +
           names[static_cast<std::size_t>(row)];
  const auto front = window().mainTab.selectedTabViewItem();
  for (const auto& item : window().mainTab.tabViewItems())
    all += item == front ? " | [" + item->label() + "]" : " | " + item->label();
  if (front) {
    const auto tab = std::dynamic_pointer_cast<OperationTabViewController>(front->viewController());
    OperationTabLayout& shown = tab->outlets();
    all += " | " + shown.labStatus.stringValue().substr(std::string_view("Status:").size()) + " " +
           std::to_string(itemCount(shown.popDatabase)) + " db" + std::to_string(tab->shownDatabase());
    for (const std::string& key : sortedKeys(shown))
      all += " " + key;
    if (!shown.labDealingQueue.stringValue().empty()) all += " queue";
  }
  for (const std::string& message : alerts.messages())
    all += " | " + message;
  return all;
}

void Program::clickRow(const std::string& text) {
  click(*tree().viewport(), tree().visualRect(treeIndex(text)).center());
}

void Program::clickTriangle(const std::string& text) {
  const QRect row = tree().visualRect(treeIndex(text));
  click(*tree().viewport(), QPoint(row.left() - tree().indentation() / 2, row.center().y()));
}

void Program::openDatabase(const std::string& favourite, const std::string& text) {
  clickTriangle(favourite);
  waitFor([&] { return std::ranges::any_of(rows(), [&](const auto& row) { return row.starts_with(text); }); },
          [&] { return joined(rows()); });
  clickRow(text);
}

void Program::waitForIdle(std::size_t index) {
  const auto isIdle = [&] { return server(index)->operationQueue().operationCount() == 0; };
  // What the last block has posted may queue the next one.
  waitFor([&] { return isIdle() && (settle(), isIdle()); }, [] { return "a queue that works on"s; });
  settle();
}

void Program::clickRow(NSTableView& table, const std::string& text) {
  const auto [cells, centre] = cell(table, text, 0);
  click(cells, centre);
}

void Program::typeInCell(NSTableView& table, const std::string& text, int column, std::string_view typed) {
  const auto [cells, centre] = cell(table, text, column);
  doubleClick(cells, centre);
  press(Qt::Key_A, Qt::ControlModifier);
  type(typed);
}

void Program::chooseInMenu(NSTableView& table, const std::string& rowText, const std::string& item) {
  const auto [cells, centre] = cell(table, rowText, 0);
  click(cells, centre, Qt::RightButton);
  QContextMenuEvent event(QContextMenuEvent::Mouse, centre, cells.mapToGlobal(centre));
  QApplication::sendEvent(&cells, &event);
  settle();
  clickItem(dynamic_cast<QMenu&>(*openPopUp()), item);
}

void Program::chooseInMainMenu(const std::string& menu, const std::string& item) {
  clickItem(*content_->window().widget()->findChild<QMenuBar*>(), menu);
  if (!openPopUp()) throw std::runtime_error("the menu " + menu + " doesn't open");
  clickItem(dynamic_cast<QMenu&>(*openPopUp()), item);
}

void Program::retype(const NSView& field, std::string_view text) {
  click(field);
  press(Qt::Key_A, Qt::ControlModifier);
  press(Qt::Key_Delete);
  type(text);
}

void Program::searchFor(std::string_view text) {
  retype(tab().txtSearchKey, text);
  press(Qt::Key_Return);
}

void Program::waitForKeys(const Texts& keys) {
  waitFor([&] { return sortedKeys(tab()) == keys; }, [&] { return joined(sortedKeys(tab())); });
}

void Program::waitForKeys(int count) {
  waitFor([&] { return tab().tableKeys.numberOfRows() == count; }, [&] { return joined(texts(tab().tableKeys)); });
  waitForIdle();
}

void Program::readKey(const std::string& key, const std::string& dataSize) {
  clickRow(tab().tableKeys, key);
  waitForText(tab().labDataSize, dataSize);
}

void Program::save(Texts messages, bool byKey) {
  byKey ? press(Qt::Key_S, Qt::ControlModifier) : click(tab().btnSave);
  messages.push_back("Saved.");
  // A button that is pressed by its chord shows it for a moment first.
  waitFor([&] { return alerts.messages() == messages; }, [&] { return joined(alerts.messages()); });
  alerts.clear();
}

void Program::waitForText(const NSControl& control, const std::string& text) {
  waitFor([&] { return control.stringValue() == text; },
          [&] { return "\"" + control.stringValue() + "\", not \"" + text + "\""; });
}

void Program::waitFor(const std::function<bool()>& done, const std::function<std::string()>& elseSays) {
  if (!waitUntil(done)) throw std::runtime_error("waited in vain: there is " + elseSays());
}

}  // namespace tarn::test
