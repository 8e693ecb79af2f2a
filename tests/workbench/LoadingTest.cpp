// What a tab asks for while keys and values are loaded, in which order, and what it shows of the replies.

#include "tests/support/RedisServer.h"
#include "tests/workbench/TabFixture.h"

#include <QAbstractEventDispatcher>
#include <QTimerEvent>

namespace tarn::test {
namespace {

const std::string scan = "scan 0 MATCH * COUNT 1000";

class LoadStages : public RecordedTab {
protected:
  QWidget& activityBar() { return *outlets().activityBar.widget(); }
  // What moves the activity bar; nothing while it is idle.
  QList<QAbstractEventDispatcher::TimerInfo> activityTimers() {
    return QAbstractEventDispatcher::instance()->registeredTimers(&activityBar());
  }
};

TEST_F(LoadStages, SelectTheShownDatabaseWhereTheWireIsElsewhereOrEndThere) {
  openKeys();
  tab->selectDatabase(2);
  search("");
  search("");
  EXPECT_EQ(peer.sent(), (Texts{"select 2", scan, scan}));
  selectKey("b");
  EXPECT_EQ(peer.sent(), (Texts{"type b", "ttl b", "get b"}));
  tab->selectDatabase(3);
  peer.refuse("select");
  selectKey("a");
  EXPECT_EQ(peer.sent(), Texts{"select 3"});
  EXPECT_EQ(alerts.shown().size(), 1U);
  EXPECT_EQ(outlets().labType.stringValue(), "Type:");
}

TEST_F(LoadStages, ListNoKeysOfADatabaseThatWasLeft) {
  openKeys();
  EXPECT_EQ(keys().size(), 3U);
  std::unique_lock hold(peer.scans);
  tab->search();
  ASSERT_TRUE(waitUntil([&] { return peer.sent() == Texts{scan}; }));
  peer.refuse("select");
  choose(outlets().popDatabase, "db1");
  hold.unlock();
  waitUntilIdle();
  EXPECT_EQ(peer.sent(), Texts{"select 1"});
  EXPECT_EQ(keys(), Texts{});
}

TEST_F(LoadStages, MoveTheActivityBarFrom300MillisecondsOnUntilTheWorkEndsOrIsCancelled) {
  openKeys();
  ASSERT_TRUE(waitUntil([&] { return activityTimers().isEmpty(); }));
  const QImage empty = activityBar().grab().toImage();
  for (const bool isCancelled : {false, true}) {
    std::unique_lock hold(peer.scans);
    // Two run at once, the third waits.
    for (int i = 0; i < 3; ++i)
      tab->search();
    ASSERT_EQ(activityTimers().size(), 1);
    EXPECT_EQ(activityTimers().front().interval, 300);
    EXPECT_EQ(activityBar().grab().toImage(), empty);
    QTimerEvent timeIsOver(activityTimers().front().timerId);
    QCoreApplication::sendEvent(&activityBar(), &timeIsOver);
    EXPECT_NE(activityBar().grab().toImage(), empty);
    if (isCancelled) server->closeConnection();
    hold.unlock();
    EXPECT_TRUE(waitUntil([&] { return activityTimers().isEmpty(); }));
    EXPECT_EQ(activityBar().grab().toImage(), empty);
  }
}

TEST_F(LoadStages, OfAnOlderLoadRunOnButFillNothing) {
  openKeys();
  outlets().tableKeys.selectRow(0);
  outlets().tableKeys.selectRow(1);
  waitUntilIdle();
  EXPECT_EQ(outlets().txtKey.stringValue(), "b");
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "b");
  Texts requests = peer.sent();
  std::sort(requests.begin(), requests.end());
  EXPECT_EQ(requests, (Texts{"get a", "get b", "ttl a", "ttl b", "type a", "type b"}));
  outlets().tableKeys.selectRow(0);
  tab->resetWorkbenchView();
  waitUntilIdle();
  choose(outlets().popValueDataCharset, "Base64");
  EXPECT_EQ(outlets().txtKey.stringValue() + outlets().valueDataStringTxtView.string(), "");
}

TEST_F(LoadStages, AskForNothingWhereTheSearchTextIsNone) {
  openKeys();
  outlets().chkExactly.setState(true);
  for (const auto& [text, told] :
       {std::pair{"", Texts{}}, {"\\B!", Texts{"Can not decode base64 part of the Search Key '\\B!'"}}}) {
    search(text);
    EXPECT_EQ(keys(), Texts{});
    EXPECT_EQ(alerts.messages(), told);
  }
  EXPECT_EQ(peer.sent(), Texts{});
}

TEST_F(LoadStages, ShowWhatCanNotBeRead) {
  const std::string broken = "*4\r\n$1\r\na\r\n$1\r\n1\r\n$1\r\nb\r\n$1\r\n\xFF\r\n";
  // clang-format off
  // Command, its reply, type, value; then type, key, TTL with its tool tip and size on show, and alerts.
  const std::vector<std::tuple<const char*, const char*, const char*, std::string, std::string, Texts>> cases{
      {"ttl", ":-2\r\n", "hash", "*2\r\n$1\r\n0\r\n*0\r\n", "Type: Hash b -2(Deleted) Data Size: 0byte(s) Data Count:0", {}},
      {"ttl", "-ERR no\r\n", "hash", "", "Type:  (DisConnected) Data Size:", {"ERR no"}},
      {"type", "-ERR no\r\n", "hash", "", "Type:  (DisConnected) Data Size:", {"ERR no"}},
      {"get", "-ERR no\r\n", "string", "", "Type: String b -1(Persist) Data Size: ", {"ERR no"}},
      {"", "", "zset", broken, "Type: SortedSet b -1(Persist) Data Size:", {"The return of 'zrange' is not correct(2199)"}},
      {"", "", "none", "", "Type:none (Unsupported Type)   Data Size:", {"No Data found on the Server for the key 'b'."}}};
  // clang-format on
  openKeys();
  for (const auto& [command, reply, type, value, form, told] : cases) {
    SCOPED_TRACE(std::string(command) + type);
    peer.hold(type, value);
    peer.reply(command, reply);
    alerts.clear();
    selectKey("b");
    OperationTabLayout& shown = outlets();
    EXPECT_EQ(shown.labType.stringValue() + ' ' + shown.txtKey.stringValue() + ' ' + shown.txtTTL.stringValue() +
                  shown.txtTTL.toolTip() + ' ' + shown.labDataSize.stringValue(),
              form);
    EXPECT_EQ(shown.valueDataHashScrollView.isHidden(), !form.starts_with("Type: Hash"));
    EXPECT_EQ(shown.valueDataSortedSetTable.numberOfRows(), 0);
    EXPECT_EQ(alerts.messages(), told);
    peer.allow();
  }
}

// --- From a real server --------------------------------------------------------------------------------------------

class Loading : public TabFixture {
protected:
  std::string string() { return outlets().valueDataStringTxtView.string(); }

  RedisServer redis{{"--enable-debug-command", "yes"}};
};

TEST_F(Loading, ListsKeysUpToTheLimitAndThoseOfAnotherCharsetOverABlankForm) {
  redis.command({"DEBUG", "POPULATE", "3000"});
  openTab(redis.port());
  EXPECT_EQ(keys().size(), 1000U);
  redis.command({"SET", "\xD6\xD0\n", "v"});
  search("\\n");
  EXPECT_EQ(outlets().tableKeys.tableColumn(0).headerToolTip(), "Count Shown:1");
  selectKey("\\B1tAK");
  EXPECT_EQ(outlets().txtKey.stringValue(), "\\B1tAK");
  choose(outlets().popKeyDataCharset, "GBK");
  waitUntilIdle();
  EXPECT_EQ(keys(), Texts{"中\\n"});
  EXPECT_EQ(outlets().txtKey.stringValue() + outlets().txtTTL.stringValue() + outlets().txtTTL.toolTip(),
            "-1(Persist)");
  EXPECT_FALSE(outlets().chkTranslate.state());
}

TEST_F(Loading, RowsAreReadAsTheBoxSaidWhileTheyWereTypedAndALoadDropsWhatIsTyped) {
  redis.command({"RPUSH", "list", "a\nb", "\\Bqw==", "\xFF", "plain"});
  openTab(redis.port());
  selectKey("list");
  NSTableView& table = outlets().valueDataSetTable;
  const auto typeInRow = [&](int row, std::string_view text) {
    table.selectRow(row);
    table.becomeFirstResponder();
    press(Qt::Key_F2);
    replaceText(text);
  };
  EXPECT_EQ(texts(table), (Texts{"a\\nb", "\\Bqw==", "\\B/w==", "plain"}));
  typeInRow(3, "x\\ty");
  click(outlets().chkTranslate);
  EXPECT_EQ(texts(table), (Texts{"a\nb", "\\Bqw==", "\\B/w==", "x\ty"}));
  EXPECT_EQ(outlets().setValueTextView.string(), "x\ty");
  typeInRow(3, "c\\nd");
  click(outlets().chkTranslate);
  EXPECT_EQ(texts(table).back(), "c\\\\nd");
  typeInRow(3, "typed");
  reload();
  EXPECT_EQ(texts(table).back() + outlets().setValueTextView.string(), "plain");
  typeInRow(2, "still open");
  choose(outlets().popValueDataCharset, "iso_8859_1");
  EXPECT_EQ(texts(table).at(2), "ÿ");
}

// An escape sequence that selects what is selected already: the text has another usual form than these bytes.
TEST_F(Loading, ReloadsTheVeryKeyThatIsShownUntilItsTextIsChanged) {
  redis.command({"SET", "\x1B(Bkey", "unusual", "EX", "60000"});
  openTab(redis.port());
  choose(outlets().popKeyDataCharset, "ISO_2022_JP");
  waitUntilIdle();
  redis.command({"SET", "key", "usual"});
  selectKey("key");
  EXPECT_EQ(outlets().labKeySize.stringValue(), "Key Size: 6byte(s)");
  click(outlets().chkTranslate);
  reload();
  EXPECT_EQ(string(), "unusual");
  typeInto(outlets().txtTTL, "6x0");
  EXPECT_EQ(outlets().txtTTL.stringValue() + outlets().txtTTL.toolTip(), "60");
  outlets().txtKey.becomeFirstResponder();
  EXPECT_EQ(outlets().txtTTL.toolTip(), "Second(s)");
  press(Qt::Key_End);
  type("x");
  press(Qt::Key_Backspace);
  reload();
  EXPECT_EQ(string(), "usual");
  EXPECT_EQ(alerts.messages(), Texts{});
  replaceText("\\B!");
  reload();
  EXPECT_EQ(alerts.messages(), Texts{"Can not decode Base64 Key '\\B!'"});
}

}  // namespace
}  // namespace tarn::test
