#include "tests/support/RedisServer.h"
#include "tests/support/RespPeer.h"
#include "tests/support/program/Program.h"

namespace tarn::test {

using ConnectionCommandsTest = ProgramTest;

TEST_F(ConnectionCommandsTest, ARowShowsOneTabAndAClosedTabThatOfTheOneInItsPlace) {
  open({{"a"}, {"b"}, {"c"}});
  for (const char* name : {"a", "c", "b", "c"})
    clickRow(name);
  see("a b *c | a | [c] | b | NotConnected 0 db0 queue");
  EXPECT_EQ(window().mainTab.selectedTabViewItem()->toolTip(), "c");
  EXPECT_EQ(window().mainTab.selectedTabViewItem()->sizeOfLabel(true), 0.0);
  see([&] { click(tab(2).btnClose); }, "a *b c | a | [b] | NotConnected 0 db0");
  see([&] { click(tab(1).btnClose); }, "*a b c | [a] | NotConnected 0 db0");
  see([&] { click(tab(0).btnClose); }, "*a b c");
  see([&] { content().closeSelectedTab(); }, "*a b c");
}

TEST_F(ConnectionCommandsTest, ADeadServerIsTriedAgainByEveryWayToConnect) {
  const LoopbackPort dead;
  open({{"dead", dead.number()}});
  clickRow("dead");
  const std::function<void()> ways[] = {[&] { clickTriangle("dead"); },
                                        [&] { clickTriangle("dead"), clickTriangle("dead"); },
                                        [&] { click(window().btnConn); }, [&] { click(tab().btnReconnect); }};
  for (const auto& way : ways)
    see(way, "*dead | [dead] | DisConnected 0 db0 queue | Can not connect to Server(dead).");
}

TEST_F(ConnectionCommandsTest, ARefusedPasswordLeavesTheConnectionUpAndSaysSo) {
  const RedisServer redis({"--requirepass", "secret", "--databases", "1"});
  open({{"local", redis.port(), "wrong"}});
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
  open({{"slow", slow.port(), "password"}, {"other", redis.port()}});
  clickRow("slow");
  selectRows({0, 1, 2});
  see([&] { click(window().btnConn); }, "*slow *other db0(0) | [slow] | Connecting 0 db0 queue");
  see([&] { click(window().btnClose); }, "*slow *other | [slow] | NotConnected 0 db0 queue");
  // Or before it has shown that it began.
  selectRows({1});
  content().clickConnect();
  content().clickCloseConnections();
  see("*slow other | [slow] | NotConnected 0 db0 queue");
  const auto isClosed = [item = server()] {
    return item->operationQueue().operationCount() == 0 && item->connectionStatus() == ConnectionStatus::notConnected;
  };
  const auto connect = [&] {
    clickRow("slow");
    see([&] { content().clickConnect(); }, "*slow other | [slow] | Connecting 0 db0 queue");
  };
  connect();
  see([&] { click(tab().btnReconnect); }, "*slow other | [slow] | Connecting 0 db0 queue");
  content().closeSelectedTab();
  EXPECT_TRUE(waitUntil(isClosed));
  see("*slow other");

  // An end by the server isn't without a word.
  connect();
  slow.kill();
  see("*slow other | [slow] | DisConnected 0 db0 queue | Can not connect to server");
  slow.start();
  slow.freeze();
  connect();
  content().clickRemoveSelectedConnections();
  EXPECT_TRUE(waitUntil(isClosed));
  see("other");
}

TEST_F(ConnectionCommandsTest, ClosingKeepsTheTabAndReconnectingGoesBackToItsDatabase) {
  RedisServer redis({"--databases", "3"});
  redis.command({"set", "zero", "1"}, 0);
  redis.command({"set", "a", "1"}, 2);
  open({{"local", redis.port()}});
  // The first click makes the tab, the same one again lists its keys anew; counts follow, and the selection stays.
  see([&] { clickTriangle("local"); }, "local db0(1) db1(0) db2(1)");
  see([&] { clickRow("db2("); }, "local db0(1) db1(0) *db2(1) | [local] | Connected 3 db2 a queue");
  EXPECT_EQ(server()->currentDbIdx(), 2);
  redis.command({"set", "b", "2"}, 2);
  tab().txtSearchKey.setStringValue("b");
  // Another one starts with an empty search.
  see([&] { clickRow("db2("); }, "local db0(1) db1(0) *db2(2) | [local] | Connected 3 db2 b queue");
  see([&] { clickRow("db0("); }, "local *db0(1) db1(0) db2(2) | [local] | Connected 3 db0 zero queue");
  see([&] { clickRow("db2("); }, "local db0(1) db1(0) *db2(2) | [local] | Connected 3 db2 a b queue");

  selectRows({1});
  see([&] { click(window().btnClose); }, "*local | [local] | NotConnected 0 db2 a b");
  // A failed attempt between the two forgets nothing, and neither does the form.
  const auto connect = [&] { content().clickConnect(); };
  redis.kill();
  see(connect, "*local | [local] | DisConnected 0 db2 a b queue | Can not connect to Server(local).");
  redis.start();
  see(connect, "*local db0(0) db1(0) db2(0) | [local] | Connected 3 db2 a b queue");
  EXPECT_TRUE(waitUntil([&] { return server()->currentDbIdx() == 2; }));

  // Lost, and made anew, without anyone asking; and one that is up is left as it is.
  waitForIdle();
  see([&] { content().bringDatabasesUpToDate(server(), false); }, "*local | [local] | DisConnected 0 db2 a b queue");
  see([&] { content().bringDatabasesUpToDate(server(), true); },
      "*local db0(0) db1(0) db2(0) | [local] | Connected 3 db2 a b queue");
  clickTriangle("local"), clickTriangle("local");
  content().clickConnect();
  waitForIdle();
  see("*local db0(0) db1(0) db2(0) | [local] | Connected 3 db2 a b");

  // Where it can't go back it starts anew on the first: fewer databases, then a server that refuses the one on show.
  const RedisServer smaller({"--databases", "2"});
  smaller.command({"set", "there", "1"}, 1);
  server()->setServerPort(smaller.port());
  const auto reconnect = [&] { click(tab().btnReconnect); };
  see(reconnect, "*local db0(0) db1(1) | [local] | Connected 2 db0 queue");
  see([&] { clickRow("db1("); }, "local db0(0) *db1(1) | [local] | Connected 2 db1 there queue");
  smaller.command({"acl", "setuser", "default", "-select"});
  see(reconnect,
      "local db0(0) db1(1) | [local] | Connected 2 db0 queue | NOPERM this user has no permissions to run "
      "the 'select' command");
}

TEST_F(ConnectionCommandsTest, RemovingTakesConnectionTabAndRecordAwayByTheIdAlone) {
  const RedisServer redis({"--databases", "1"});
  open({{"twin", redis.port()}, {"twin", redis.port()}});
  clickRow("twin");
  see([&] { clickTriangle("twin"); }, "*twin db0(0) twin | [twin] | Connected 1 db0 queue");
  const std::weak_ptr<OperationTabViewController> tab = tabOf();
  const std::weak_ptr<ServerItem> removed = server();
  const NSUUID staying = server(1)->serverId();
  see([&] { click(window().btnRem); }, "twin");
  EXPECT_TRUE(tab.expired());
  EXPECT_TRUE(waitUntil([&] { return removed.expired(); }));
  EXPECT_EQ(redis.command({"client", "kill", "type", "normal", "skipme", "yes"}), ":0\r\n");
  see([&] { restart(); }, "twin");
  EXPECT_EQ(server()->serverId(), staying);
}

}  // namespace tarn::test
