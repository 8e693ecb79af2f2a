#include "tests/endtoend/Desk.h"

#include <algorithm>

#include "favourites/FavouritesStore.h"
#include "platform/appkit/TableViewWidget.h"
#include "resources/Images.h"
#include "tests/support/widgets/Hand.h"

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
  const auto error = delegate_.context().save();
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

void Desk::clickRow(NSTableView& table, const std::string& text) {
  const Texts texts = column(table);
  const auto found = std::find(texts.begin(), texts.end(), text);
  ASSERT_NE(found, texts.end()) << text;
  const int row = static_cast<int>(found - texts.begin());
  table.scrollRowToVisible(row);
  auto& widget = dynamic_cast<TableViewWidget&>(*table.widget());
  test::click(*widget.viewport(), widget.cellRect(row, 0).center());
}

void Desk::retype(NSTextField& field, std::string_view text) {
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

testing::AssertionResult Desk::becomes(const NSControl& control, std::string_view text) {
  if (waitUntil([&] { return control.stringValue() == text; })) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "it reads \"" << control.stringValue() << "\", not \"" << text << "\"";
}

void Desk::picture(const std::string& name) {
  grab(*content_->window().widget(), name);
}

}  // namespace tarn::test
