#include <algorithm>

#include "tests/support/RedisServer.h"
#include "tests/workbench/TabFixture.h"

namespace tarn::test {
namespace {

using Texts = std::vector<std::string>;

class ValueLoadingTest : public TabFixture {
protected:
  void openKey(const std::string& text) {
    search("");
    selectKey(text);
  }
  void chooseCharset(const char* title) {
    NSPopUpButton& charsets = outlets().popValueDataCharset;
    const std::string before = charsets.titleOfSelectedItem();
    charsets.selectItemWithTitle(title);
    const int index = charsets.indexOfSelectedItem();
    charsets.selectItemWithTitle(before);
    choose(*charsets.widget(), index);
  }
  std::string label(const NSTextField& field) { return field.stringValue(); }

  RedisServer redis;
};

TEST_F(ValueLoadingTest, ShowsAString) {
  redis.command({"SET", "k\\n", "h\xC3\xA9\r\n", "EX", "5000"});
  openTab(redis.port());
  openKey("k\\\\n");
  EXPECT_EQ(outlets().txtKey.stringValue(), "k\\\\n");
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "hé\r\n");
  EXPECT_EQ(label(outlets().labType), "Type: String");
  EXPECT_EQ(label(outlets().labKeySize), "Key Size: 3byte(s)");
  EXPECT_EQ(label(outlets().labDataSize), "Data Size: 5byte(s)");
  EXPECT_EQ(outlets().txtTTL.toolTip(), "Second(s)");
  EXPECT_EQ(outlets().popType.titleOfSelectedItem(), "String");
  EXPECT_TRUE(outlets().chkTranslate.state());
  EXPECT_FALSE(outlets().valueDataStringScrollView.isHidden());
}

TEST_F(ValueLoadingTest, ShowsAListAndItsSelectedRow) {
  redis.command({"RPUSH", "list", "a\nb", "\\Bqw==", "\xFF", "plain"});
  openTab(redis.port());
  openKey("list");
  EXPECT_EQ(label(outlets().labType), "Type: List");
  EXPECT_EQ(label(outlets().labDataSize), "Data Size: 15byte(s) Data Count:4");
  EXPECT_EQ(outlets().txtTTL.stringValue(), "-1");
  EXPECT_EQ(outlets().txtTTL.toolTip(), "(Persist)");
  EXPECT_TRUE(outlets().valueDataStringScrollView.isHidden());
  EXPECT_FALSE(outlets().valueDataSetScrollView.isHidden());
  EXPECT_FALSE(outlets().setValueScrollView.isHidden());
  EXPECT_FALSE(outlets().btnAddRow.isHidden());

  NSTableView& table = outlets().valueDataSetTable;
  EXPECT_EQ(texts(table, 0), (Texts{"a\\nb", "\\Bqw==", "\\B/w==", "plain"}));
  EXPECT_EQ(table.viewAtColumn(0, 0, true)->toolTip(), "a\nb");
  EXPECT_FALSE(table.viewAtColumn(0, 0, true)->isEditable());

  table.selectRowIndexes({0}, false);
  EXPECT_EQ(outlets().setValueTextView.string(), "a\nb");
  table.deselectAll();
  EXPECT_EQ(outlets().setValueTextView.string(), "");

  click(*outlets().chkTranslate.widget());
  EXPECT_EQ(texts(table, 0).front(), "a\nb");
}

TEST_F(ValueLoadingTest, ShowsASetAHashAndASortedSet) {
  redis.command({"SADD", "set", "one", "two"});
  redis.command({"HSET", "hash", "f1", "v1", "f2", "\xFF", "f3", ""});
  redis.command({"ZADD", "zset", "1.5", "b", "-inf", "a", "3", "c"});
  openTab(redis.port());

  openKey("set");
  EXPECT_EQ(label(outlets().labType), "Type: Set");
  EXPECT_EQ(label(outlets().labDataSize), "Data Size: 6byte(s) Data Count:2");
  Texts members = texts(outlets().valueDataSetTable, 0);
  std::sort(members.begin(), members.end());
  EXPECT_EQ(members, (Texts{"one", "two"}));

  openKey("hash");
  EXPECT_EQ(label(outlets().labType), "Type: Hash");
  EXPECT_EQ(label(outlets().labDataSize), "Data Size: 9byte(s) Data Count:3");
  EXPECT_EQ(texts(outlets().valueDataHashTable, 0), (Texts{"f1", "f2", "f3"}));
  EXPECT_EQ(texts(outlets().valueDataHashTable, 1), (Texts{"v1", "\\B/w==", ""}));
  EXPECT_TRUE(outlets().valueDataSetScrollView.isHidden());
  EXPECT_FALSE(outlets().hashValueLabel.isHidden());
  outlets().valueDataHashTable.selectRowIndexes({1}, false);
  EXPECT_EQ(outlets().hashKeyTextView.string(), "f2");
  EXPECT_EQ(outlets().hashValueTextView.string(), "\\B/w==");

  openKey("zset");
  EXPECT_EQ(label(outlets().labType), "Type: SortedSet");
  EXPECT_EQ(label(outlets().labDataSize), "Data Size: 11byte(s) Data Count:6");
  EXPECT_EQ(texts(outlets().valueDataSortedSetTable, 0), (Texts{"a", "b", "c"}));
  EXPECT_EQ(texts(outlets().valueDataSortedSetTable, 1), (Texts{"-inf", "1.5", "3"}));
  EXPECT_FALSE(outlets().sortedSetScoreTextField.isHidden());
  outlets().valueDataSortedSetTable.selectRowIndexes({1}, false);
  EXPECT_EQ(outlets().sortedSetValueTextView.string(), "b");
  EXPECT_EQ(outlets().sortedSetScoreTextField.stringValue(), "1.5");
}

TEST_F(ValueLoadingTest, ShowsValuesUnderTheChosenTitle) {
  redis.command({"SET", "gbk", "\xD6\xD0"});
  redis.command({"RPUSH", "list", "\xD6\xD0", ""});
  openTab(redis.port());
  openKey("gbk");
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "");
  EXPECT_EQ(label(outlets().labDataSize), "Data Size: 2byte(s)");

  outlets().popValueDataCharset.selectItemWithTitle("Base64");
  click(*outlets().btnReload.widget());
  waitUntilIdle();
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "1tA=");
  openKey("list");
  EXPECT_EQ(texts(outlets().valueDataSetTable, 0), (Texts{"\\B1tA=", "\\B"}));

  openKey("gbk");
  chooseCharset("GBK");
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "中");
  openKey("list");
  EXPECT_EQ(texts(outlets().valueDataSetTable, 0), (Texts{"中", ""}));
  chooseCharset("utf8");
  EXPECT_EQ(texts(outlets().valueDataSetTable, 0), (Texts{"\\B1tA=", ""}));

  openKey("gbk");
  tab->resetWorkbenchView();
  chooseCharset("GBK");
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "");
}

TEST_F(ValueLoadingTest, TellsOfKeysThatNoPaneShows) {
  redis.command({"SET", "gone", "v"});
  redis.command({"XADD", "stream", "*", "f", "v"});
  openTab(redis.port());
  search("");
  redis.command({"DEL", "gone"});
  selectKey("gone");
  EXPECT_EQ(label(outlets().labType), "Type:none (Unsupported Type)");
  EXPECT_EQ(label(outlets().labKeySize), "Key Size:");
  EXPECT_EQ(outlets().txtTTL.toolTip(), "");
  EXPECT_EQ(outlets().tableKeys.numberOfRows(), 2);
  selectKey("stream");
  EXPECT_EQ(label(outlets().labType), "Type:stream (Unsupported Type)");
  EXPECT_EQ(alerts.messages(), (Texts{"No Data found on the Server for the key 'gone'.",
                                      "No Data found on the Server for the key 'stream'."}));
}

TEST_F(ValueLoadingTest, ReloadsTheKeyThatTheFormNames) {
  redis.command({"SET", "shown", "1"});
  redis.command({"SET", "typed", "2"});
  openTab(redis.port());
  openKey("shown");
  outlets().txtKey.becomeFirstResponder();
  press(Qt::Key_A, Qt::ControlModifier);
  type("typed");
  click(*outlets().btnReload.widget());
  waitUntilIdle();
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "2");

  press(Qt::Key_A, Qt::ControlModifier);
  type("\\B!");
  click(*outlets().btnReload.widget());
  waitUntilIdle();
  EXPECT_EQ(alerts.messages(), (Texts{"Can not decode Base64 Key '\\B!'"}));
}

// An escape sequence that selects what is selected already: the text has another usual form than these bytes.
TEST_F(ValueLoadingTest, AKeyTextThatNoHandChangedStandsForItsVeryBytes) {
  const std::string key = "\x1B(Bkey";
  redis.command({"SET", key, "unusual"});
  redis.command({"SET", "key", "usual"});
  openTab(redis.port());
  outlets().popKeyDataCharset.selectItemWithTitle("ISO_2022_JP");
  search("");
  for (int row = 0; row < 2; ++row) {
    outlets().tableKeys.selectRowIndexes({row}, false);
    waitUntilIdle();
    if (outlets().valueDataStringTxtView.string() == "unusual") break;
  }
  ASSERT_EQ(outlets().txtKey.stringValue(), "key");
  click(*outlets().btnReload.widget());
  waitUntilIdle();
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "unusual");
  EXPECT_EQ(label(outlets().labKeySize), "Key Size: 6byte(s)");

  click(*outlets().chkTranslate.widget());
  click(*outlets().btnReload.widget());
  waitUntilIdle();
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "unusual");

  outlets().txtKey.becomeFirstResponder();
  press(Qt::Key_End);
  type("x");
  press(Qt::Key_Backspace);
  click(*outlets().btnReload.widget());
  waitUntilIdle();
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "usual");
  EXPECT_EQ(alerts.messages(), Texts{});
}

TEST_F(ValueLoadingTest, BlanksTheFormWhenTheConnectionIsLost) {
  redis.command({"SET", "key", "v"});
  openTab(redis.port());
  search("");
  redis.kill();
  selectKey("key");
  EXPECT_EQ(alerts.shown().size(), 1U);
  EXPECT_EQ(label(outlets().labType), "Type:");
  EXPECT_EQ(outlets().txtKey.stringValue(), "");
  EXPECT_EQ(outlets().txtTTL.toolTip(), "(DisConnected)");
  EXPECT_EQ(label(outlets().labDataSize), "Data Size:");
}

TEST_F(ValueLoadingTest, ATtlBeingTypedLosesItsToolTipUntilTheEnd) {
  redis.command({"SET", "key", "v"});
  openTab(redis.port());
  openKey("key");
  outlets().txtTTL.becomeFirstResponder();
  press(Qt::Key_A, Qt::ControlModifier);
  type("6x0");
  EXPECT_EQ(outlets().txtTTL.stringValue(), "60");
  EXPECT_EQ(outlets().txtTTL.toolTip(), "");
  outlets().txtKey.becomeFirstResponder();
  settle();
  EXPECT_EQ(outlets().txtTTL.toolTip(), "Second(s)");
}

TEST_F(ValueLoadingTest, SharesTheWidthOfAPaneAmongItsColumns) {
  redis.command({"ZADD", "zset", "1", "a"});
  openTab(redis.port());
  openKey("zset");
  tab->doResize();
  const double width = outlets().valueDataSortedSetScrollView.frame().width - 8.0;
  EXPECT_NEAR(outlets().valueDataSortedSetTable.tableColumn(0).width(), 0.7 * width, 1.0);
  EXPECT_NEAR(outlets().valueDataSortedSetTable.tableColumn(1).width(), 0.3 * width, 1.0);
}

TEST_F(ValueLoadingTest, StagesOfAClosedTabLapse) {
  redis.command({"RPUSH", "key", "v"});
  openTab(redis.port());
  search("");
  for (int i = 0; i < 20; ++i) {
    outlets().tableKeys.selectRowIndexes({0}, false);
    tab->search();
    tab.reset();
    ASSERT_TRUE(waitUntil([&] { return idle(); }));
    showTab();
    search("");
  }
  EXPECT_EQ(alerts.messages(), Texts{});
}

}  // namespace
}  // namespace tarn::test
