#include "tests/endtoend/Desk.h"

#include "favourites/FavouritesStore.h"
#include "platform/appkit/table/TableViewWidget.h"
#include "resources/Resources.h"
#include "tests/support/widgets/Hand.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>

namespace tarn::test {

Desk::Desk() {
  EXPECT_TRUE(loadResources());
}

Desk::~Desk() {
  for (const auto& held : servers_) {
    if (const auto server = held.lock()) server->closeConnection();
  }
  dropWindow();
  // What still runs would tell the next test of its failures.
  EXPECT_TRUE(waitUntil([this] {
    return std::all_of(servers_.begin(), servers_.end(), [](const auto& held) {
      const auto server = held.lock();
      return !server || server->operationQueue().operationCount() == 0;
    });
  }));
  settle();
}

void Desk::storeFavourite(const std::string& name, int port, const std::string& password) {
  ServerItem favourite;
  favourite.setConnectionName(name);
  favourite.setServerIp("127.0.0.1");
  favourite.setServerPort(port);
  favourite.setAuth(password);
  favourite.setDefaultCharset("utf8");
  FavouritesStore().insertRecord(favourite);
  const auto error = delegate_->context().save();
  EXPECT_FALSE(error) << error->description();
}

void Desk::openWindow() {
  content_.emplace();
  for (const auto& server : content_->myFavourite()->servers)
    servers_.push_back(server);
  controller_.emplace(*content_);
  controller_->showWindow();
  show(*content_->window().widget());
}

void Desk::dropWindow() {
  controller_.reset();
  content_.reset();
}

void Desk::restart() {
  dropWindow();
  delegate_.reset();
  delegate_.emplace();
  openWindow();
}

void Desk::toFront() {
  show(*content_->window().widget());
}

void Desk::openForm(const NSButton& button) {
  click(button);
  ASSERT_TRUE(waitUntil([&] { return form().window.widget()->isActiveWindow(); }));
}

void Desk::newKey(const std::string& type) {
  click(tab().btnNew);
  NewKeyValueTypeSelectLayout& dialog = content_->newKeyValueTypeSelectWindowController()->dialog().outlets();
  ASSERT_TRUE(waitUntil([&] { return dialog.window.widget()->isActiveWindow(); }));
  chooseTitle(dialog.popValueType, type);
  click(dialog.btnConfirm);
  toFront();
  ASSERT_EQ(tab().labType.stringValue(), "Type: " + type + " (New)");
}

OperationTabLayout& Desk::tab() {
  return content_->tabForServer(*server())->outlets();
}

QTreeView& Desk::tree() {
  return dynamic_cast<QTreeView&>(named(*content_->window().widget(), "serverSelection"));
}

Desk::Texts Desk::treeRows() {
  Texts texts;
  for (QModelIndex row = tree().model()->index(0, 0); row.isValid(); row = tree().indexBelow(row)) {
    texts.push_back(row.data().toString().toStdString());
  }
  return texts;
}

QModelIndex Desk::treeIndex(const std::string& text) {
  QModelIndex row = tree().model()->index(0, 0);
  while (row.isValid() && row.data().toString().toStdString() != text)
    row = tree().indexBelow(row);
  EXPECT_TRUE(row.isValid()) << text;
  return row;
}

void Desk::clickTreeRow(const std::string& text) {
  test::click(*tree().viewport(), tree().visualRect(treeIndex(text)).center());
}

void Desk::clickTriangle(const std::string& text) {
  const QRect row = tree().visualRect(treeIndex(text));
  test::click(*tree().viewport(), QPoint(row.left() - tree().indentation() / 2, row.center().y()));
}

Desk::Texts Desk::column(NSTableView& table, int number) {
  Texts texts;
  for (int row = 0; row < table.numberOfRows(); ++row) {
    texts.push_back(table.viewAtColumn(number, row, true)->stringValue());
  }
  return texts;
}

Desk::Texts Desk::sortedKeys(NSTableView& table) {
  Texts texts = column(table);
  std::sort(texts.begin(), texts.end());
  return texts;
}

void Desk::openDatabase(const std::string& favourite, const std::string& text) {
  clickTriangle(favourite);
  ASSERT_TRUE(waitUntil([&] { return std::ranges::count(treeRows(), text) == 1; }))
      << testing::PrintToString(treeRows());
  clickTreeRow(text);
}

QPoint Desk::cellPlace(NSTableView& table, const std::string& text, int columnNumber) {
  const Texts texts = column(table, columnNumber);
  const auto found = std::find(texts.begin(), texts.end(), text);
  EXPECT_NE(found, texts.end()) << text;
  const int row = static_cast<int>(found - texts.begin());
  table.scrollRowToVisible(row);
  return dynamic_cast<TableViewWidget&>(*table.widget()).cellRect(row, columnNumber).center();
}

void Desk::clickRow(NSTableView& table, const std::string& text) {
  const QPoint place = cellPlace(table, text, 0);
  test::click(*dynamic_cast<TableViewWidget&>(*table.widget()).viewport(), place);
}

void Desk::typeInCell(NSTableView& table, const std::string& text, int columnNumber, std::string_view typed) {
  const QPoint place = cellPlace(table, text, columnNumber);
  doubleClick(*dynamic_cast<TableViewWidget&>(*table.widget()).viewport(), place);
  press(Qt::Key_A, Qt::ControlModifier);
  type(typed);
}

namespace {

template <typename Menu>
void clickItem(Menu& menu, const std::string& text) {
  for (QAction* item : menu.actions()) {
    if (item->text().toStdString() == text) return test::click(menu, menu.actionGeometry(item).center());
  }
  FAIL() << text;
}

}  // namespace

void Desk::chooseInMenu(NSTableView& table, const std::string& rowText, const std::string& item) {
  const QPoint place = cellPlace(table, rowText, 0);
  QWidget& cells = *dynamic_cast<TableViewWidget&>(*table.widget()).viewport();
  test::click(cells, place, Qt::RightButton);
  QContextMenuEvent event(QContextMenuEvent::Mouse, place, cells.mapToGlobal(place));
  QApplication::sendEvent(&cells, &event);
  settle();
  clickItem(dynamic_cast<QMenu&>(*openPopUp()), item);
}

void Desk::chooseInMainMenu(const std::string& menu, const std::string& item) {
  clickItem(*content_->window().widget()->findChild<QMenuBar*>(), menu);
  ASSERT_NE(openPopUp(), nullptr) << menu;
  clickItem(dynamic_cast<QMenu&>(*openPopUp()), item);
}

void Desk::retype(const NSView& field, std::string_view text) {
  test::click(*field.widget());
  press(Qt::Key_A, Qt::ControlModifier);
  press(Qt::Key_Delete);
  type(text);
}

void Desk::chooseTitle(NSPopUpButton& popUp, const std::string& title) {
  const int before = popUp.indexOfSelectedItem();
  popUp.selectItemWithTitle(title);
  const int index = popUp.indexOfSelectedItem();
  popUp.selectItemAtIndex(before);
  ASSERT_GE(index, 0) << title;
  choose(*popUp.widget(), index);
}

void Desk::click(const NSView& view) {
  test::click(*view.widget());
}

void Desk::searchFor(std::string_view text) {
  retype(tab().txtSearchKey, text);
  press(Qt::Key_Return);
}

testing::AssertionResult Desk::lists(const Texts& keys) {
  if (waitUntil([&] { return sortedKeys(tab().tableKeys) == keys; })) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "the keys are " << testing::PrintToString(sortedKeys(tab().tableKeys));
}

void Desk::readKey(const std::string& key, const std::string& dataSize) {
  clickRow(tab().tableKeys, key);
  ASSERT_TRUE(becomes(tab().labDataSize, dataSize));
}

void Desk::save(Texts messages) {
  click(tab().btnSave);
  expectSaved(std::move(messages));
}

void Desk::saveByKey() {
  press(Qt::Key_S, Qt::ControlModifier);
  // A button that is pressed by its chord shows it for a moment first.
  ASSERT_TRUE(waitUntil([&] { return !alerts.shown().empty(); }));
  expectSaved({});
}

void Desk::expectSaved(Texts messages) {
  messages.push_back("Saved.");
  EXPECT_EQ(alerts.messages(), messages);
  alerts.clear();
}

testing::AssertionResult Desk::becomes(const NSControl& control, std::string_view text) {
  if (waitUntil([&] { return control.stringValue() == text; })) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "it reads \"" << control.stringValue() << "\", not \"" << text << "\"";
}

void Desk::picture(const std::string& name) {
  grab(*content_->window().widget(), name);
}

}  // namespace tarn::test
