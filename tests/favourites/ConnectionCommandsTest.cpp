#include "tests/support/LoopbackPort.h"
#include "tests/support/RedisServer.h"
#include "tests/support/program/ProgramTest.h"

namespace tarn::test {

using ConnectionCommandsTest = ProgramTest;

TEST_F(ConnectionCommandsTest, ARowShowsOneTabAndAClosedTabThatOfTheOneInItsPlace) {
  for (const char* name : {"a", "b", "c"})
    store(name, 1);
  openWindow();
  for (const char* name : {"a", "c", "b", "c"})
    clickRow(name);
  see("a b *c | a | [c] | b | NotConnected 0 db0 queue");
  const auto item = window().mainTab.selectedTabViewItem();
  EXPECT_EQ(item->toolTip(), "c");
  EXPECT_EQ(item->sizeOfLabel(true), 0.0);
  EXPECT_GT(item->sizeOfLabel(false), 0.0);
  for (const auto& [closed, left] : {std::pair(2U, "a *b c | a | [b] | NotConnected 0 db0"),
                                     {1U, "*a b c | [a] | NotConnected 0 db0"},
                                     {0U, "*a b c"}}) {
    click(tab(closed).btnClose);
    see(left);
  }
  // Without a tab nothing is closed.
  content().closeSelectedTab();
  see("*a b c");
}

TEST_F(ConnectionCommandsTest, ADeadServerIsTriedAgainByEveryWayToConnect) {
  const LoopbackPort dead;
  store("dead", dead.number());
  openWindow();
  clickRow("dead");
  const std::function<void()> ways[] = {[&] { clickTriangle("dead"); },
                                        [&] { clickTriangle("dead"), clickTriangle("dead"); },
                                        [&] {
                                          selectRows({0, 1}), click(window().btnConn);
                                        },
                                        [&] { click(tab().btnReconnect); }};
  for (const auto& connectAgain : ways) {
    connectAgain();
    see("*dead | [dead] | DisConnected 0 db0 queue | Can not connect to Server(dead).");
  }
}

TEST_F(ConnectionCommandsTest, ARefusedPasswordLeavesTheConnectionUpAndSaysSo) {
  const RedisServer redis({"--requirepass", "secret", "--databases", "1"});
  store("local", redis.port(), "wrong");
  openWindow();
  clickRow("local");
  clickTriangle("local");
  see("*local | [local] | DisConnected 0 db0 queue | WRONGPASS invalid username-password pair or user is disabled.");
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::connected);

  // The way out is the tab's own button.
  server()->setAuth("secret");
  click(tab().btnReconnect);
  see("*local db0(0) | [local] | Connected 1 db0 queue");
}

TEST_F(ConnectionCommandsTest, AConnectUnderWayHoldsNoOtherUpAndEndsWithoutAWordWhenItIsClosed) {
  const RedisServer redis({"--databases", "1"});
  RedisServer slow({"--requirepass", "password", "--databases", "1"});
  slow.freeze();
  store("slow", slow.port(), "password");
  store("other", redis.port());
  openWindow();
  clickRow("slow");
  selectRows({0, 1, 2});
  click(window().btnConn);
  see("*slow *other db0(0) | [slow] | Connecting 0 db0 queue");
  click(window().btnClose);
  see("*slow *other | [slow] | NotConnected 0 db0 queue");
  // Or before it has shown that it began.
  content().clickConnect();
  content().clickCloseConnections();
  see("*slow *other | [slow] | NotConnected 0 db0 queue");
  const std::shared_ptr<ServerItem> item = server();
  const auto connect = [&] {
    clickRow("slow");
    content().clickConnect();
    see("*slow other | [slow] | Connecting 0 db0 queue");
  };
  const auto isClosed = [&] {
    return waitUntil([&] { return item->operationQueue().operationCount() == 0; }) &&
           item->connectionStatus() == ConnectionStatus::notConnected;
  };
  connect();
  click(tab().btnReconnect);
  see("*slow other | [slow] | Connecting 0 db0 queue");
  content().closeSelectedTab();
  EXPECT_TRUE(isClosed());
  see("*slow other");

  // An end by the server isn't without a word.
  connect();
  slow.kill();
  see("*slow other | [slow] | DisConnected 0 db0 queue | Can not connect to server");
  slow.start();
  slow.freeze();
  connect();
  content().clickRemoveSelectedConnections();
  EXPECT_TRUE(isClosed());
  see("other");
}

TEST_F(ConnectionCommandsTest, ClosingKeepsTheTabAndReconnectingGoesBackToItsDatabase) {
  RedisServer redis({"--databases", "3"});
  redis.command({"set", "zero", "1"}, 0);
  redis.command({"set", "a", "1"}, 2);
  store("local", redis.port());
  openWindow();
  clickTriangle("local");
  see("local db0(1) db1(0) db2(1)");
  // The first click makes the tab, the same one again lists its keys anew; counts follow, and the selection stays.
  clickRow("db2(");
  see("local db0(1) db1(0) *db2(1) | [local] | Connected 3 db2 a queue");
  EXPECT_EQ(server()->currentDbIdx(), 2);
  redis.command({"set", "b", "2"}, 2);
  tab().txtSearchKey.setStringValue("b");
  clickRow("db2(");
  see("local db0(1) db1(0) *db2(2) | [local] | Connected 3 db2 b queue");
  // Another one starts with an empty search.
  clickRow("db0(");
  see("local *db0(1) db1(0) db2(2) | [local] | Connected 3 db0 zero queue");
  clickRow("db2(");
  waitForKeys({"a", "b"});
  see("local db0(1) db1(0) *db2(2) | [local] | Connected 3 db2 a b queue");

  selectRows({1});
  click(window().btnClose);
  see("*local | [local] | NotConnected 0 db2 a b");
  // A failed attempt between the two forgets nothing, and neither does the form.
  redis.kill();
  content().clickConnect();
  see("*local | [local] | DisConnected 0 db2 a b queue | Can not connect to Server(local).");
  redis.start();
  content().clickConnect();
  see("*local db0(0) db1(0) db2(0) | [local] | Connected 3 db2 a b queue");
  EXPECT_TRUE(waitUntil([&] { return server()->currentDbIdx() == 2; }));

  // Lost, and made anew, without anyone asking.
  waitForIdle();
  content().bringDatabasesUpToDate(server(), false);
  see("*local | [local] | DisConnected 0 db2 a b queue");
  content().bringDatabasesUpToDate(server(), true);
  see("*local db0(0) db1(0) db2(0) | [local] | Connected 3 db2 a b queue");

  // A connection that is up is left as it is.
  clickTriangle("local"), clickTriangle("local");
  content().clickConnect();
  waitForIdle();
  see("*local db0(0) db1(0) db2(0) | [local] | Connected 3 db2 a b");

  // Where it can't go back it starts anew on the first: fewer databases, then a server that refuses the one on show.
  const RedisServer smaller({"--databases", "2"});
  smaller.command({"set", "there", "1"}, 1);
  server()->setServerPort(smaller.port());
  click(tab().btnReconnect);
  see("*local db0(0) db1(1) | [local] | Connected 2 db0 queue");
  clickRow("db1(");
  see("local db0(0) *db1(1) | [local] | Connected 2 db1 there queue");
  smaller.command({"acl", "setuser", "default", "-select"});
  click(tab().btnReconnect);
  see("local db0(0) db1(1) | [local] | Connected 2 db0 queue | NOPERM this user has no permissions to run the 'select' "
      "command");
}

TEST_F(ConnectionCommandsTest, RemovingTakesConnectionTabAndRecordAwayByTheIdAlone) {
  const RedisServer redis({"--databases", "1"});
  store("twin", redis.port());
  store("twin", redis.port());
  openWindow();
  clickRow("twin");
  clickTriangle("twin");
  see("*twin db0(0) twin | [twin] | Connected 1 db0 queue");
  const std::weak_ptr<OperationTabViewController> tab = tabOf();
  const std::weak_ptr<ServerItem> removed = server();
  const NSUUID staying = server(1)->serverId();
  click(window().btnRem);
  see("twin");
  EXPECT_TRUE(tab.expired());
  EXPECT_TRUE(waitUntil([&] { return removed.expired(); }));
  EXPECT_EQ(redis.command({"client", "kill", "type", "normal", "skipme", "yes"}), ":0\r\n");
  restart();
  see("twin");
  EXPECT_EQ(server()->serverId(), staying);
}

}  // namespace tarn::test
