#include "favourites/ConnectionCommands.h"
#include "tests/support/LoopbackPort.h"
#include "tests/support/RedisServer.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/program/ProgramTest.h"

namespace tarn::test {

namespace {

class ConnectionCommandsTest : public ProgramTest {
protected:
  std::string status() { return tab().labStatus.stringValue(); }
  int databases() { return itemCount(tab().popDatabase); }
};

}  // namespace

TEST_F(ConnectionCommandsTest, AConnectionThatIsUpIsLeftAsItIs) {
  const RedisServer redis({"--databases", "2"});
  store("local", redis.port());
  openWindow();
  clickRow("local");
  EXPECT_EQ(status(), "Status:NotConnected");
  EXPECT_EQ(databases(), 0);
  connect();
  EXPECT_EQ(databases(), 2);
  clickTriangle("local");
  clickTriangle("local");
  content().clickConnect();
  waitForIdle();
  EXPECT_EQ(redis.command({"client", "kill", "type", "normal", "skipme", "yes"}), ":1\r\n");
  EXPECT_EQ(alerts.messages(), Texts());
}

TEST_F(ConnectionCommandsTest, ARefusedPasswordLeavesTheConnectionUpAndSaysSo) {
  const RedisServer redis({"--requirepass", "secret"});
  store("local", redis.port(), "wrong");
  openWindow();
  clickRow("local");
  clickTriangle("local");
  waitForIdle();
  ASSERT_EQ(alerts.shown().size(), 1U);
  EXPECT_NE(alerts.messages()[0].find("WRONGPASS"), std::string::npos);
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::connected);
  EXPECT_EQ(status(), "Status:DisConnected");
  EXPECT_EQ(databases(), 0);
  EXPECT_EQ(rows(), (Texts{"My Favourite", "local"}));

  // The way out is the tab's own button.
  server()->setAuth("secret");
  click(tab().btnReconnect);
  waitForText(tab().labStatus, "Status:Connected");
  EXPECT_EQ(databases(), 16);
}

TEST_F(ConnectionCommandsTest, ADeadServerIsTriedAgainByEveryWayToConnect) {
  const LoopbackPort dead;
  store("dead", dead.number());
  openWindow();
  clickRow("dead");
  const std::function<void()> ways[] = {[&] { clickTriangle("dead"); },
                                        [&] {
                                          clickTriangle("dead");
                                          clickTriangle("dead");
                                        },
                                        [&] { content().clickConnect(); }, [&] { click(tab().btnReconnect); }};
  for (const auto& connectAgain : ways) {
    connectAgain();
    waitForIdle();
    EXPECT_EQ(alerts.messages(), Texts{"Can not connect to Server(dead)."});
    EXPECT_EQ(status(), "Status:DisConnected");
    EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::disConnected);
    alerts.clear();
  }
}

TEST_F(ConnectionCommandsTest, ManyServersConnectSideBySide) {
  const RedisServer first({"--databases", "1"});
  RedisServer frozen;
  const RedisServer last({"--databases", "1"});
  frozen.freeze();
  store("first", first.port());
  store("frozen", frozen.port(), "password");
  store("last", last.port());
  openWindow();
  selectRows({0, 1, 2, 3});
  click(window().btnConn);
  const Texts connected{"My Favourite", "first", "db0(0)", "frozen", "last", "db0(0)"};
  EXPECT_TRUE(waitUntil([&] { return rows() == connected; }));
  EXPECT_EQ(alerts.messages(), Texts());
}

TEST_F(ConnectionCommandsTest, AConnectUnderWayEndsWithoutAWordWhenItIsClosed) {
  // Takes the connection and never answers the password.
  ScriptedServer silent([](ScriptedServer::Peer& peer, int) {
    while (!peer.readRequest().empty()) {
    }
  });
  store("silent", silent.port(), "password");
  openWindow();
  const std::shared_ptr<ServerItem> item = server();
  const auto openTabAndConnect = [&](int connections) {
    clickRow("silent");
    content().clickConnect();
    return waitUntil([&] { return silent.connections() == connections; });
  };
  const auto isClosed = [&] {
    return waitUntil([&] { return item->operationQueue().operationCount() == 0; }) &&
           item->connectionStatus() == ConnectionStatus::notConnected;
  };

  ASSERT_TRUE(openTabAndConnect(1));
  waitForText(tab().labStatus, "Status:Connecting");
  EXPECT_EQ(tab().labDealingQueue.stringValue(), "Dealing Queue:1");
  content().clickCloseConnections();
  EXPECT_TRUE(isClosed());
  settle();
  EXPECT_EQ(status(), "Status:NotConnected");

  ASSERT_TRUE(openTabAndConnect(2));
  click(tab().btnReconnect);
  ASSERT_TRUE(waitUntil([&] { return silent.connections() == 3; }));
  content().closeSelectedTab();
  EXPECT_TRUE(isClosed());
  EXPECT_EQ(rows(), (Texts{"My Favourite", "silent"}));

  ASSERT_TRUE(openTabAndConnect(4));
  content().clickRemoveSelectedConnections();
  EXPECT_TRUE(isClosed());
  EXPECT_EQ(rows(), Texts{"My Favourite"});
  EXPECT_EQ(alerts.messages(), Texts());
}

TEST_F(ConnectionCommandsTest, ClosingKeepsTheTabAndReconnectingGoesBackToItsDatabase) {
  RedisServer redis({"--databases", "4"});
  redis.command({"set", "here", "1"}, 2);
  store("local", redis.port());
  openWindow();
  connect();
  clickRow("db2(");
  waitForKeys(1);

  selectRows({1});
  click(window().btnClose);
  EXPECT_EQ(rows(), (Texts{"My Favourite", "local"}));
  EXPECT_EQ(status(), "Status:NotConnected");
  EXPECT_EQ(databases(), 0);

  // A failed attempt between the two forgets nothing, and neither does the form.
  redis.kill();
  content().clickConnect();
  waitForIdle();
  EXPECT_EQ(alerts.messages(), Texts{"Can not connect to Server(local)."});
  redis.start();
  content().clickConnect();
  ASSERT_TRUE(waitUntil([&] { return databases() == 4 && server()->currentDbIdx() == 2; }));
  waitForIdle();
  EXPECT_EQ(tab().popDatabase.indexOfSelectedItem(), 2);
  EXPECT_EQ(tab().tableKeys.numberOfRows(), 1);

  // Lost, and made anew, without anyone asking.
  content().bringDatabasesUpToDate(server(), false);
  EXPECT_EQ(rows(), (Texts{"My Favourite", "local"}));
  EXPECT_EQ(status(), "Status:DisConnected");
  EXPECT_EQ(databases(), 0);
  content().bringDatabasesUpToDate(server(), true);
  EXPECT_EQ(rows().size(), 6U);
  EXPECT_EQ(status(), "Status:Connected");
  EXPECT_EQ(databases(), 4);
}

// First by fewer databases, then by a server that refuses the one that was shown.
TEST_F(ConnectionCommandsTest, AReconnectThatCannotGoBackStartsAnewOnTheFirst) {
  const RedisServer redis({"--databases", "4"});
  const RedisServer smaller({"--databases", "2"});
  redis.command({"set", "here", "1"}, 3);
  smaller.command({"set", "there", "1"}, 1);
  store("local", redis.port());
  openWindow();
  connect();
  const auto startsAnew = [&] {
    click(tab().btnReconnect);
    const bool isAnew =
        waitUntil([&] { return status() == "Status:Connected" && databases() == 2 && tabOf()->shownDatabase() == 0; });
    waitForIdle();
    return isAnew && tab().tableKeys.numberOfRows() == 0;
  };
  clickRow("db3(");
  waitForKeys(1);
  server()->setServerPort(smaller.port());
  EXPECT_TRUE(startsAnew());
  EXPECT_EQ(alerts.messages(), Texts());

  clickRow("db1(");
  waitForKeys(1);
  smaller.command({"acl", "setuser", "default", "-select"});
  EXPECT_TRUE(startsAnew());
  ASSERT_EQ(alerts.shown().size(), 1U);
  EXPECT_NE(alerts.messages()[0].find("NOPERM"), std::string::npos);
}

TEST_F(ConnectionCommandsTest, RemovingTakesConnectionTabAndRecordAwayByTheIdAlone) {
  const RedisServer redis;
  store("twin", redis.port());
  store("twin", redis.port());
  openWindow();
  clickRow("twin");
  connect();
  const std::weak_ptr<OperationTabViewController> tab = tabOf();
  const std::weak_ptr<ServerItem> removed = server();
  const NSUUID staying = server(1)->serverId();

  selectRows({1});
  click(window().btnRem);
  EXPECT_EQ(rows(), (Texts{"My Favourite", "twin"}));
  EXPECT_EQ(tabLabels(), Texts{});
  EXPECT_TRUE(tab.expired());
  EXPECT_TRUE(waitUntil([&] { return removed.expired(); }));
  EXPECT_EQ(redis.command({"client", "kill", "type", "normal", "skipme", "yes"}), ":0\r\n");
  restart();
  EXPECT_EQ(rows(), (Texts{"My Favourite", "twin"}));
  EXPECT_EQ(server()->serverId(), staying);
}

}  // namespace tarn::test
