// What a tab asks for while keys and values are loaded, in which order, and what it shows of the replies.

#include "tests/support/RedisServer.h"
#include "tests/workbench/TabFixture.h"

#include <QAbstractEventDispatcher>
#include <QTimerEvent>

namespace tarn::test {
namespace {

class LoadStages : public RecordedTab {
protected:
  QWidget& activityBar() { return *outlets().activityBar.widget(); }
  // What moves the activity bar; nothing while it is idle.
  QList<QAbstractEventDispatcher::TimerInfo> activityTimers() {
    return QAbstractEventDispatcher::instance()->registeredTimers(&activityBar());
  }
};

TEST_F(LoadStages, ListNoKeysOfADatabaseThatWasLeft) {
  openKeys();
  EXPECT_EQ(keys().size(), 3U);
  std::unique_lock hold(peer.scans);
  tab->search();
  ASSERT_TRUE(waitUntil([&] { return peer.sent().size() == 1; }));
  peer.reply("select", "-ERR no\r\n");
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
