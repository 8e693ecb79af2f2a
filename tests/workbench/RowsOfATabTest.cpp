#include <algorithm>

#include "platform/appkit/TableViewWidget.h"
#include "tests/support/RedisServer.h"
#include "tests/workbench/TabFixture.h"
#include "workbench/codec/CharsetEnum.h"

namespace tarn::test {
namespace {

using Texts = std::vector<std::string>;

// Rows that come from a server, and go by what the rest of the tab does.
class RowsOfATab : public TabFixture {
protected:
  void openCell(NSTableView& table, int row, int column) {
    auto& widget = dynamic_cast<TableViewWidget&>(*table.widget());
    doubleClick(*widget.viewport(), widget.cellRect(row, column).center());
  }
  void replaceText(std::string_view text) {
    press(Qt::Key_A, Qt::ControlModifier);
    type(text);
  }
  void chooseCharset(const char* title) {
    const Texts titles = charsetTitles();
    const auto found = std::find(titles.begin(), titles.end(), title);
    choose(*outlets().popValueDataCharset.widget(), static_cast<int>(found - titles.begin()));
  }

  RedisServer redis;
};

TEST_F(RowsOfATab, ALoadDropsWhatIsTypedInAnOpenCell) {
  redis.command({"RPUSH", "first", "a", "b"});
  redis.command({"RPUSH", "second", "c", "d"});
  openTab(redis.port());
  search("");
  selectKey("first");
  NSTableView& table = outlets().valueDataSetTable;
  openCell(table, 1, 0);
  replaceText("typed");
  selectKey("second");
  EXPECT_EQ(texts(table, 0), (Texts{"c", "d"}));
  EXPECT_EQ(table.selectedRow(), -1);
  EXPECT_EQ(outlets().setValueTextView.string(), "");

  openCell(table, 0, 0);
  replaceText("typed");
  press(Qt::Key_Return);
  EXPECT_EQ(texts(table, 0), (Texts{"typed", "d"}));
  openCell(table, 1, 0);
  replaceText("typed too");
  click(*outlets().btnReload.widget());
  waitUntilIdle();
  EXPECT_EQ(texts(table, 0), (Texts{"c", "d"}));
  EXPECT_EQ(redis.command({"LRANGE", "second", "0", "-1"}), "*2\r\n$1\r\nc\r\n$1\r\nd\r\n");
}

TEST_F(RowsOfATab, AnotherCharsetShowsTheBytesAndWhatWasCommitted) {
  redis.command({"ZADD", "zset", "1.5", "\xD6\xD0", "inf", "plain"});
  openTab(redis.port());
  search("");
  selectKey("zset");
  NSTableView& table = outlets().valueDataSortedSetTable;
  EXPECT_EQ(texts(table, 0), (Texts{"\\B1tA=", "plain"}));
  openCell(table, 1, 0);
  replaceText("committed");
  press(Qt::Key_Return);
  openCell(table, 0, 0);
  replaceText("still open");
  chooseCharset("GBK");
  EXPECT_EQ(texts(table, 0), (Texts{"中", "committed"}));
  EXPECT_EQ(texts(table, 1), (Texts{"1.5", "inf"}));

  chooseCharset("Base64");
  EXPECT_EQ(texts(table, 0), (Texts{"\\B1tA=", "\\BY29tbWl0dGVk"}));
  chooseCharset("utf8");
  EXPECT_EQ(texts(table, 0), (Texts{"\\B1tA=", "committed"}));
  EXPECT_EQ(texts(table, 1), (Texts{"1.5", "inf"}));
  EXPECT_EQ(alerts.messages(), Texts{});
}

TEST_F(RowsOfATab, EscapesAreReadAsTheBoxSaidWhileTheyWereTyped) {
  redis.command({"HSET", "hash", "field", "value"});
  openTab(redis.port());
  search("");
  selectKey("hash");
  NSTableView& table = outlets().valueDataHashTable;
  openCell(table, 0, 1);
  replaceText("a\\nb");
  click(*outlets().chkTranslate.widget());
  EXPECT_EQ(table.viewAtColumn(1, 0, false)->stringValue(), "a\nb");
  EXPECT_EQ(outlets().hashValueTextView.string(), "a\nb");
  openCell(table, 0, 0);
  replaceText("c\\nd");
  click(*outlets().chkTranslate.widget());
  EXPECT_EQ(table.viewAtColumn(0, 0, false)->stringValue(), "c\\\\nd");
}

TEST_F(RowsOfATab, TheButtonsOfRowsShowWithTheTables) {
  redis.command({"SET", "string", "v"});
  redis.command({"ZADD", "zset", "1", "a"});
  openTab(redis.port());
  search("");
  EXPECT_TRUE(outlets().btnAddRow.isHidden());
  selectKey("zset");
  EXPECT_FALSE(outlets().btnAddRow.isHidden());
  EXPECT_FALSE(outlets().btnDeleteSelectedRows.isHidden());
  selectKey("string");
  EXPECT_TRUE(outlets().btnAddRow.isHidden());
  EXPECT_TRUE(outlets().btnDeleteSelectedRows.isHidden());
}

// A timer and a queued step of a tab that goes away at once.
TEST_F(RowsOfATab, EditsOfAClosedTabLapse) {
  redis.command({"RPUSH", "list", "a"});
  openTab(redis.port());
  search("");
  selectKey("list");
  openCell(outlets().valueDataSetTable, 0, 0);
  type("x");
  press(Qt::Key_Return);
  openCell(outlets().valueDataSetTable, 0, 0);
  type("y");
  tab.reset();
  waitUntil([] { return false; }, std::chrono::milliseconds(150));
  EXPECT_EQ(alerts.messages(), Texts{});
}

}  // namespace
}  // namespace tarn::test
