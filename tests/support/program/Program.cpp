#include "tests/support/program/Program.h"

#include "favourites/FavouritesStore.h"
#include "platform/appkit/table/TableViewWidget.h"
#include "resources/Resources.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>
#include <stdexcept>

namespace tarn::test {

namespace {

using std::string_literals::operator""s;

std::string joined(const Program::Texts& texts) {
  std::string all;
  for (const std::string& text : texts)
    all += "\"" + text + "\" ";
  return all;
}

void waitUntilActive(const NSView& window) {
  Program::waitFor([&] { return window.widget()->isActiveWindow(); }, [] { return "a window without the keyboard"s; });
}

QPoint cellCentre(NSTableView& table, const std::string& text, int column) {
  const Program::Texts shown = texts(table, column);
  const auto found = std::ranges::find(shown, text);
  if (found == shown.end()) throw std::runtime_error("no cell \"" + text + "\" among " + joined(shown));
  const int row = static_cast<int>(found - shown.begin());
  table.scrollRowToVisible(row);
  return dynamic_cast<TableViewWidget&>(*table.widget()).cellRect(row, column).center();
}

QWidget& cellsOf(NSTableView& table) {
  return *dynamic_cast<TableViewWidget&>(*table.widget()).viewport();
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
  waitUntil([this] {
    return std::ranges::all_of(servers_, [](const auto& held) {
      const auto server = held.lock();
      return !server || server->operationQueue().operationCount() == 0;
    });
  });
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
  for (const auto& server : content_->myFavourite()->servers)
    servers_.push_back(server);
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

void Program::toFront() {
  show(*content_->window().widget());
}

Program::Texts Program::tabLabels() {
  Texts labels;
  for (const auto& item : window().mainTab.tabViewItems())
    labels.push_back(item->label());
  return labels;
}

void Program::openForm(const NSButton& button) {
  click(button);
  waitUntilActive(form().window);
}

void Program::openTypeDialog() {
  content_->openTypeDialog();
  waitUntilActive(typeDialog().window);
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

void Program::clickRow(const std::string& text) {
  click(*tree().viewport(), tree().visualRect(treeIndex(text)).center());
}

void Program::clickTriangle(const std::string& text) {
  const QRect row = tree().visualRect(treeIndex(text));
  click(*tree().viewport(), QPoint(row.left() - tree().indentation() / 2, row.center().y()));
}

void Program::connect(std::size_t index) {
  clickTriangle(server(index)->connectionName());
  waitFor([&] { return server(index)->connectionStatus() == ConnectionStatus::connected; },
          [&] { return joined(alerts.messages()); });
  waitForIdle(index);
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
  const QPoint centre = cellCentre(table, text, 0);
  click(cellsOf(table), centre);
}

void Program::typeInCell(NSTableView& table, const std::string& text, int column, std::string_view typed) {
  const QPoint centre = cellCentre(table, text, column);
  doubleClick(cellsOf(table), centre);
  press(Qt::Key_A, Qt::ControlModifier);
  type(typed);
}

void Program::chooseInMenu(NSTableView& table, const std::string& rowText, const std::string& item) {
  const QPoint centre = cellCentre(table, rowText, 0);
  QWidget& cells = cellsOf(table);
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
  const auto shown = [&] {
    Texts texts = test::texts(tab().tableKeys);
    std::ranges::sort(texts);
    return texts;
  };
  waitFor([&] { return shown() == keys; }, [&] { return joined(shown()); });
}

void Program::waitForKeys(int count) {
  waitFor([&] { return tab().tableKeys.numberOfRows() == count; }, [&] { return joined(texts(tab().tableKeys)); });
  waitForIdle();
}

void Program::readKey(const std::string& key, const std::string& dataSize) {
  clickRow(tab().tableKeys, key);
  waitForText(tab().labDataSize, dataSize);
}

void Program::save(Texts messages) {
  click(tab().btnSave);
  takeSaved(std::move(messages));
}

void Program::saveByKey() {
  press(Qt::Key_S, Qt::ControlModifier);
  // A button that is pressed by its chord shows it for a moment first.
  waitUntil([&] { return !alerts.shown().empty(); });
  takeSaved({});
}

void Program::takeSaved(Texts messages) {
  messages.push_back("Saved.");
  if (alerts.messages() != messages) throw std::runtime_error("a save says " + joined(alerts.messages()));
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
