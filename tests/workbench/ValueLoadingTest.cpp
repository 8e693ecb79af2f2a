#include "tests/support/RedisServer.h"
#include "tests/workbench/TabFixture.h"
#include "tests/workbench/TableHands.h"

#include <algorithm>

namespace tarn::test {
namespace {

// Values that come from a server, and rows that go by what the rest of the tab does.
class ValueLoadingTest : public TabFixture {
protected:
  void openKeys() {
    openTab(redis.port());
    search("");
  }
  void reload() {
    click(*outlets().btnReload.widget());
    waitUntilIdle();
  }
  std::string string() { return outlets().valueDataStringTxtView.string(); }

  RedisServer redis;
};

TEST_F(ValueLoadingTest, EachTypeHasItsPane) {
  struct Case {
    const char* type;
    const char* dataSize;
    const NSView& pane;
    const NSView& editor;
  };
  redis.command({"SET", "String", "v"});
  redis.command({"RPUSH", "List", "a", "\xFF"});
  redis.command({"SADD", "Set", "one"});
  redis.command({"HSET", "Hash", "f", "v", "g", ""});
  redis.command({"ZADD", "SortedSet", "1.5", "b"});
  openKeys();
  OperationTabLayout& tabs = outlets();
  const Case cases[] = {
      {"String", "Data Size: 1byte(s)", tabs.valueDataStringScrollView, tabs.valueDataStringScrollView},
      {"List", "Data Size: 2byte(s) Data Count:2", tabs.valueDataSetScrollView, tabs.setValueScrollView},
      {"Set", "Data Size: 3byte(s) Data Count:1", tabs.valueDataSetScrollView, tabs.setValueScrollView},
      {"Hash", "Data Size: 3byte(s) Data Count:2", tabs.valueDataHashScrollView, tabs.hashValueScrollView},
      {"SortedSet", "Data Size: 4byte(s) Data Count:2", tabs.valueDataSortedSetScrollView,
       tabs.sortedSetScoreTextField},
  };
  for (const Case& shown : cases) {
    selectKey(shown.type);
    EXPECT_EQ(tabs.labType.stringValue(), std::string("Type: ") + shown.type);
    EXPECT_EQ(tabs.popType.titleOfSelectedItem(), shown.type);
    EXPECT_EQ(tabs.labDataSize.stringValue(), shown.dataSize);
    for (const Case& other : cases) {
      EXPECT_EQ(other.pane.isHidden(), &other.pane != &shown.pane) << shown.type << other.type;
      EXPECT_EQ(other.editor.isHidden(), &other.editor != &shown.editor) << shown.type << other.type;
    }
    EXPECT_EQ(tabs.btnAddRow.isHidden(), std::string_view(shown.type) == "String");
    EXPECT_EQ(tabs.btnDeleteSelectedRows.isHidden(), std::string_view(shown.type) == "String");
  }
  tab->doResize();
  const double width = tabs.valueDataSortedSetScrollView.frame().width - 8.0;
  EXPECT_NEAR(tabs.valueDataSortedSetTable.tableColumn(0).width(), 0.7 * width, 1.0);
  EXPECT_NEAR(tabs.valueDataSortedSetTable.tableColumn(1).width(), 0.3 * width, 1.0);
}

TEST_F(ValueLoadingTest, ShowsRowsWithEscapesAndTheSelectedOneWithout) {
  redis.command({"RPUSH", "list", "a\nb", "\\Bqw==", "\xFF", "plain"});
  openKeys();
  selectKey("list");
  EXPECT_TRUE(outlets().chkTranslate.state());
  NSTableView& table = outlets().valueDataSetTable;
  EXPECT_EQ(texts(table, 0), (Texts{"a\\nb", "\\Bqw==", "\\B/w==", "plain"}));
  EXPECT_EQ(table.viewAtColumn(0, 0, true)->toolTip(), "a\nb");
  EXPECT_FALSE(table.viewAtColumn(0, 0, true)->isEditable());
  table.selectRow(0);
  EXPECT_EQ(outlets().setValueTextView.string(), "a\nb");
  table.deselectAll();
  EXPECT_EQ(outlets().setValueTextView.string(), "");
  click(*outlets().chkTranslate.widget());
  EXPECT_EQ(texts(table, 0).front(), "a\nb");
}

TEST_F(ValueLoadingTest, ShowsValuesUnderTheChosenTitle) {
  redis.command({"SET", "gbk", "\xD6\xD0"});
  redis.command({"RPUSH", "list", "\xD6\xD0", ""});
  openKeys();
  selectKey("gbk");
  EXPECT_EQ(string(), "");
  outlets().popValueDataCharset.selectItemWithTitle("Base64");
  reload();
  EXPECT_EQ(string(), "1tA=");
  selectKey("list");
  EXPECT_EQ(texts(outlets().valueDataSetTable, 0), (Texts{"\\B1tA=", "\\B"}));
  selectKey("gbk");
  chooseTitle(outlets().popValueDataCharset, "GBK");
  EXPECT_EQ(string(), "中");
  tab->resetWorkbenchView();
  chooseTitle(outlets().popValueDataCharset, "Base64");
  EXPECT_EQ(string(), "");
}

TEST_F(ValueLoadingTest, AnotherCharsetShowsTheBytesAndWhatWasCommitted) {
  redis.command({"ZADD", "zset", "1.5", "\xD6\xD0", "inf", "plain"});
  openKeys();
  selectKey("zset");
  NSTableView& table = outlets().valueDataSortedSetTable;
  EXPECT_EQ(texts(table, 0), (Texts{"\\B1tA=", "plain"}));
  openCell(table, 1, 0);
  replaceText("committed");
  press(Qt::Key_Return);
  openCell(table, 0, 0);
  replaceText("still open");
  const std::pair<const char*, Texts> cases[] = {
      {"GBK", {"中", "committed"}}, {"Base64", {"\\B1tA=", "\\BY29tbWl0dGVk"}}, {"utf8", {"\\B1tA=", "committed"}}};
  for (const auto& [title, members] : cases) {
    chooseTitle(outlets().popValueDataCharset, title);
    EXPECT_EQ(texts(table, 0), members);
    EXPECT_EQ(texts(table, 1), (Texts{"1.5", "inf"}));
  }
  EXPECT_EQ(alerts.messages(), Texts{});
}

TEST_F(ValueLoadingTest, ALoadDropsWhatIsTypedInAnOpenCell) {
  redis.command({"RPUSH", "first", "a", "b"});
  redis.command({"RPUSH", "second", "c", "d"});
  openKeys();
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
  reload();
  EXPECT_EQ(texts(table, 0), (Texts{"c", "d"}));
}

TEST_F(ValueLoadingTest, EscapesAreReadAsTheBoxSaidWhileTheyWereTyped) {
  redis.command({"HSET", "hash", "field", "value"});
  openKeys();
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

// A timer and a queued step of a tab that goes away at once.
TEST_F(ValueLoadingTest, EditsOfAClosedTabLapse) {
  redis.command({"RPUSH", "list", "a"});
  openKeys();
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

TEST_F(ValueLoadingTest, TellsOfAKeyThatIsGone) {
  redis.command({"SET", "gone", "v"});
  openKeys();
  redis.command({"DEL", "gone"});
  selectKey("gone");
  EXPECT_EQ(outlets().labType.stringValue(), "Type:none (Unsupported Type)");
  EXPECT_EQ(outlets().labKeySize.stringValue(), "Key Size:");
  EXPECT_EQ(outlets().txtTTL.toolTip(), "");
  EXPECT_EQ(outlets().tableKeys.numberOfRows(), 1);
  EXPECT_EQ(alerts.messages(), Texts{"No Data found on the Server for the key 'gone'."});
}

TEST_F(ValueLoadingTest, ReloadsTheKeyThatTheFormNames) {
  redis.command({"SET", "shown", "1"});
  redis.command({"SET", "typed", "2"});
  openKeys();
  selectKey("shown");
  outlets().txtKey.becomeFirstResponder();
  replaceText("typed");
  reload();
  EXPECT_EQ(string(), "2");
  replaceText("\\B!");
  reload();
  EXPECT_EQ(alerts.messages(), Texts{"Can not decode Base64 Key '\\B!'"});
}

// An escape sequence that selects what is selected already: the text has another usual form than these bytes.
TEST_F(ValueLoadingTest, AKeyTextThatNoHandChangedStandsForItsVeryBytes) {
  redis.command({"SET", "\x1B(Bkey", "unusual"});
  openTab(redis.port());
  outlets().popKeyDataCharset.selectItemWithTitle("ISO_2022_JP");
  search("");
  redis.command({"SET", "key", "usual"});
  selectKey("key");
  EXPECT_EQ(outlets().labKeySize.stringValue(), "Key Size: 6byte(s)");
  reload();
  EXPECT_EQ(string(), "unusual");
  click(*outlets().chkTranslate.widget());
  reload();
  EXPECT_EQ(string(), "unusual");

  outlets().txtKey.becomeFirstResponder();
  press(Qt::Key_End);
  type("x");
  press(Qt::Key_Backspace);
  reload();
  EXPECT_EQ(string(), "usual");
  EXPECT_EQ(alerts.messages(), Texts{});
}

TEST_F(ValueLoadingTest, ATtlBeingTypedLosesItsToolTipUntilTheEnd) {
  redis.command({"SET", "key", "v"});
  openKeys();
  selectKey("key");
  outlets().txtTTL.becomeFirstResponder();
  replaceText("6x0");
  EXPECT_EQ(outlets().txtTTL.stringValue(), "60");
  EXPECT_EQ(outlets().txtTTL.toolTip(), "");
  outlets().txtKey.becomeFirstResponder();
  settle();
  EXPECT_EQ(outlets().txtTTL.toolTip(), "Second(s)");
}

}  // namespace
}  // namespace tarn::test
