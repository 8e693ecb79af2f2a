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
  EXPECT_EQ(outlets().tableKeys.numberOfRows(), 3);
  peer.holdScans();
  tab->search();
  ASSERT_TRUE(waitUntil([&] { return peer.sent() == Texts{scan}; }));
  peer.refuse("select");
  choose(*outlets().popDatabase.widget(), 1);
  peer.releaseScans();
  waitUntilIdle();
  EXPECT_EQ(peer.sent(), Texts{"select 1"});
  EXPECT_EQ(outlets().tableKeys.numberOfRows(), 0);
}

TEST_F(LoadStages, MoveTheActivityBarFrom300MillisecondsOnUntilTheWorkEndsOrIsCancelled) {
  openKeys();
  ASSERT_TRUE(waitUntil([&] { return activityTimers().isEmpty(); }));
  const QImage empty = activityBar().grab().toImage();
  for (const bool isCancelled : {false, true}) {
    peer.holdScans();
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
    peer.releaseScans();
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
  chooseTitle(outlets().popValueDataCharset, "Base64");
  EXPECT_EQ(outlets().txtKey.stringValue() + outlets().valueDataStringTxtView.string(), "");
}

TEST_F(LoadStages, OfAClosedTabLapse) {
  open("list", "*1\r\n$1\r\na\r\n");
  for (int i = 0; i < 20; ++i) {
    outlets().tableKeys.selectRow(0);
    tab->search();
    tab.reset();
    ASSERT_TRUE(waitUntil([&] { return idle(); }));
    showTab();
    search("");
  }
  // So do an ended edit and the timer of an open cell.
  selectKey("b");
  openCell(outlets().valueDataSetTable, 0, 0);
  type("x");
  press(Qt::Key_Return);
  openCell(outlets().valueDataSetTable, 0, 0);
  type("y");
  tab.reset();
  waitForATimer();
  showTab();
  EXPECT_EQ(alerts.messages(), Texts{});
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
    outlets().tableKeys.deselectAll();
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
  void openKeys() {
    openTab(redis.port());
    search("");
  }
  Texts keysFor(std::string_view text) {
    search(text);
    Texts keys = texts(outlets().tableKeys, 0);
    std::sort(keys.begin(), keys.end());
    return keys;
  }
  void reload() {
    click(*outlets().btnReload.widget());
    waitUntilIdle();
  }
  std::string string() { return outlets().valueDataStringTxtView.string(); }

  RedisServer redis{{"--enable-debug-command", "yes"}};
};

TEST_F(Loading, ListsTheKeysThatAPatternFindsAsEscapedTextUpToTheLimit) {
  for (const std::string key : {"user", "a\\b", "line\nfeed", "\xFF\x01"})
    redis.command({"SET", key, "v"});
  openTab(redis.port());
  EXPECT_EQ(keysFor(""), (Texts{"\\B/wE=", "a\\\\b", "line\\nfeed", "user"}));
  EXPECT_EQ(outlets().tableKeys.tableColumn(0).headerToolTip(), "Count Shown:4");
  EXPECT_EQ(keysFor("line\\nf"), Texts{"line\\nfeed"});
  outlets().chkExactly.setState(true);
  EXPECT_EQ(keysFor("use"), Texts{});
  EXPECT_EQ(keysFor("\\B/wE="), Texts{"\\B/wE="});
  EXPECT_EQ(keysFor(""), Texts{});
  EXPECT_EQ(alerts.messages(), Texts{});
  EXPECT_EQ(keysFor("\\Bqw="), Texts{});
  EXPECT_EQ(alerts.messages(), Texts{"Can not decode base64 part of the Search Key '\\Bqw='"});
  click(*outlets().btnSearchKeyClear.widget());
  redis.command({"DEBUG", "POPULATE", "3000"});
  click(*outlets().chkExactly.widget());
  waitUntilIdle();
  EXPECT_EQ(outlets().tableKeys.numberOfRows(), 1000);
}

TEST_F(Loading, ListsTheDatabaseAndTheCharsetThatAreChosenOverABlankForm) {
  redis.command({"SET", "\xD6\xD0", "v"}, 3);
  openKeys();
  choose(*outlets().popDatabase.widget(), 3);
  waitUntilIdle();
  EXPECT_EQ(server->currentDbIdx(), 3);
  tab->showConnection(ConnectionStatus::disConnected);
  EXPECT_EQ(tab->shownDatabase(), 3);
  tab->showConnection(ConnectionStatus::connected);
  EXPECT_EQ(outlets().popDatabase.titleOfSelectedItem(), "db3");
  selectKey("\\B1tA=");
  EXPECT_EQ(outlets().txtKey.stringValue(), "\\B1tA=");
  chooseTitle(outlets().popKeyDataCharset, "GBK");
  waitUntilIdle();
  EXPECT_EQ(texts(outlets().tableKeys, 0), Texts{"中"});
  EXPECT_EQ(outlets().labKey.stringValue(), "Key(GBK):");
  EXPECT_EQ(outlets().txtKey.stringValue(), "");
  EXPECT_EQ(outlets().txtTTL.stringValue() + outlets().txtTTL.toolTip(), "-1(Persist)");
  EXPECT_FALSE(outlets().chkTranslate.state());
}

TEST_F(Loading, RowsAreReadAsTheBoxSaidWhileTheyWereTypedAndALoadDropsWhatIsTyped) {
  redis.command({"RPUSH", "list", "a\nb", "\\Bqw==", "\xFF", "plain"});
  openKeys();
  selectKey("list");
  NSTableView& table = outlets().valueDataSetTable;
  EXPECT_EQ(texts(table, 0), (Texts{"a\\nb", "\\Bqw==", "\\B/w==", "plain"}));
  openCell(table, 3, 0);
  replaceText("x\\ty");
  click(*outlets().chkTranslate.widget());
  EXPECT_EQ(texts(table, 0), (Texts{"a\nb", "\\Bqw==", "\\B/w==", "x\ty"}));
  EXPECT_EQ(outlets().setValueTextView.string(), "x\ty");
  openCell(table, 3, 0);
  replaceText("c\\nd");
  click(*outlets().chkTranslate.widget());
  EXPECT_EQ(texts(table, 0).back(), "c\\\\nd");
  openCell(table, 3, 0);
  replaceText("typed");
  reload();
  EXPECT_EQ(texts(table, 0).back(), "plain");
  EXPECT_EQ(outlets().setValueTextView.string(), "");
  openCell(table, 2, 0);
  replaceText("still open");
  chooseTitle(outlets().popValueDataCharset, "iso_8859_1");
  EXPECT_EQ(texts(table, 0).at(2), "ÿ");
}

// An escape sequence that selects what is selected already: the text has another usual form than these bytes.
TEST_F(Loading, ReloadsTheVeryKeyThatIsShownUntilItsTextIsChanged) {
  redis.command({"SET", "\x1B(Bkey", "unusual", "EX", "60000"});
  openTab(redis.port());
  outlets().popKeyDataCharset.selectItemWithTitle("ISO_2022_JP");
  search("");
  redis.command({"SET", "key", "usual"});
  selectKey("key");
  EXPECT_EQ(outlets().labKeySize.stringValue(), "Key Size: 6byte(s)");
  click(*outlets().chkTranslate.widget());
  reload();
  EXPECT_EQ(string(), "unusual");
  outlets().txtTTL.becomeFirstResponder();
  replaceText("6x0");
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
