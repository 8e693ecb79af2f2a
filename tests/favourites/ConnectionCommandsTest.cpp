#include "favourites/ConnectionCommands.h"
#include "tests/favourites/FavouritesFixture.h"
#include "tests/support/RedisServer.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/widgets/Hand.h"

namespace tarn::test {

using ConnectionCommandsTest = FavouritesTest;
using Texts = std::vector<std::string>;

namespace {

std::string status(const ConnectionTabs::Tab& tab) {
  return tab->outlets().labStatus.stringValue();
}
int databases(const ConnectionTabs::Tab& tab) {
  return itemCount(tab->outlets().popDatabase);
}

// A port where nobody listens.
int closedPort() {
  RedisServer gone;
  return gone.port();
}

}  // namespace

TEST_F(ConnectionCommandsTest, OpeningARowConnectsAndShowsDatabasesInTreeAndTab) {
  const RedisServer redis({"--databases", "2"});
  store("local", redis.port());
  openWindow();
  clickRow(1);
  ASSERT_TRUE(tabOf());
  EXPECT_EQ(status(tabOf()), "Status:NotConnected");
  EXPECT_EQ(databases(tabOf()), 0);

  connect();
  EXPECT_EQ(rows(), (Texts{"My Favourite", "local", "db0(0)", "db1(0)"}));
  EXPECT_EQ(status(tabOf()), "Status:Connected");
  EXPECT_EQ(databases(tabOf()), 2);
  EXPECT_EQ(tabOf()->shownDatabase(), 0);

  // Opening it again, and the command, find it connected.
  clickTriangle(1);
  clickTriangle(1);
  window().clickConnect();
  EXPECT_EQ(redis.command({"client", "kill", "type", "normal", "skipme", "yes"}), ":1\r\n");
  EXPECT_EQ(alerts.messages(), Texts());
}

TEST_F(ConnectionCommandsTest, ARefusedPasswordLeavesTheConnectionUpAndSaysSo) {
  const RedisServer redis({"--requirepass", "secret"});
  store("local", redis.port(), "wrong");
  openWindow();
  clickRow(1);
  clickTriangle(1);
  ASSERT_TRUE(waitForIdle());
  ASSERT_EQ(alerts.shown().size(), 1U);
  EXPECT_NE(alerts.messages()[0].find("WRONGPASS"), std::string::npos);
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::connected);
  EXPECT_EQ(status(tabOf()), "Status:DisConnected");
  EXPECT_EQ(databases(tabOf()), 0);
  EXPECT_EQ(rows(), (Texts{"My Favourite", "local"}));

  // The way out is the tab's own button.
  server()->setAuth("secret");
  click(*tabOf()->outlets().btnReconnect.widget());
  ASSERT_TRUE(waitUntil([&] { return status(tabOf()) == "Status:Connected"; }));
  EXPECT_EQ(databases(tabOf()), 16);
}

TEST_F(ConnectionCommandsTest, ADeadServerIsTriedAgainByEveryWayToConnect) {
  store("dead", closedPort());
  openWindow();
  clickRow(1);
  clickTriangle(1);
  ASSERT_TRUE(waitForIdle());
  EXPECT_EQ(status(tabOf()), "Status:DisConnected");

  clickTriangle(1);
  clickTriangle(1);
  ASSERT_TRUE(waitForIdle());
  window().clickConnect();
  ASSERT_TRUE(waitForIdle());
  click(*tabOf()->outlets().btnReconnect.widget());
  ASSERT_TRUE(waitForIdle());
  EXPECT_EQ(alerts.messages(), Texts(4, "Can not connect to Server(dead)."));
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::disConnected);
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
  window().outlets().serverSelection.selectRowIndexes({0, 1, 2, 3});
  click(*window().outlets().btnConn.widget());
  EXPECT_TRUE(
      waitUntil([&] { return rows() == Texts{"My Favourite", "first", "db0(0)", "frozen", "last", "db0(0)"}; }));
  EXPECT_EQ(alerts.messages(), Texts());
  server(1)->closeConnection();
}

TEST_F(ConnectionCommandsTest, AConnectUnderWayEndsWithoutAWordWhenItIsClosed) {
  // Takes the connection and never answers the password.
  ScriptedServer silent([](ScriptedServer::Peer& peer, int) {
    while (!peer.readRequest().empty()) {
    }
  });
  store("silent", silent.port(), "password");
  openWindow();
  const auto openTabAndConnect = [&](int connections) {
    clickRow(1);
    window().clickConnect();
    return waitUntil([&] { return silent.connections() == connections; });
  };
  const std::shared_ptr<ServerItem> item = server();

  ASSERT_TRUE(openTabAndConnect(1));
  window().clickCloseConnections();
  ASSERT_TRUE(waitForIdle());
  EXPECT_EQ(item->connectionStatus(), ConnectionStatus::notConnected);
  EXPECT_EQ(status(tabOf()), "Status:NotConnected");

  ASSERT_TRUE(openTabAndConnect(2));
  click(*tabOf()->outlets().btnReconnect.widget());
  ASSERT_TRUE(waitUntil([&] { return silent.connections() == 3; }));
  window().closeSelectedTab();
  ASSERT_TRUE(waitForIdle());
  EXPECT_EQ(item->connectionStatus(), ConnectionStatus::notConnected);
  EXPECT_EQ(rows(), (Texts{"My Favourite", "silent"}));

  ASSERT_TRUE(openTabAndConnect(4));
  window().clickRemoveSelectedConnections();
  EXPECT_TRUE(waitUntil([&] { return item->operationQueue().operationCount() == 0; }));
  EXPECT_EQ(rows(), Texts{"My Favourite"});
  EXPECT_EQ(alerts.messages(), Texts());
}

TEST_F(ConnectionCommandsTest, ClosingKeepsTheTabAndReconnectingGoesBackToItsDatabase) {
  RedisServer redis({"--databases", "4"});
  redis.command({"set", "here", "1"}, 2);
  store("local", redis.port());
  openWindow();
  connect();
  clickRow(4);
  ASSERT_TRUE(waitForKeys(1));
  ASSERT_EQ(tabOf()->shownDatabase(), 2);

  selectRow(1);
  click(*window().outlets().btnClose.widget());
  EXPECT_EQ(rows(), (Texts{"My Favourite", "local"}));
  EXPECT_EQ(status(tabOf()), "Status:NotConnected");
  EXPECT_EQ(databases(tabOf()), 0);

  // A failed attempt between the two forgets nothing, and neither does the form.
  redis.kill();
  window().clickConnect();
  ASSERT_TRUE(waitForIdle());
  EXPECT_EQ(alerts.messages(), Texts{"Can not connect to Server(local)."});
  redis.start();
  window().clickConnect();
  ASSERT_TRUE(waitForStatus(ConnectionStatus::connected));
  ASSERT_TRUE(waitUntil([&] { return server()->currentDbIdx() == 2; }));
  ASSERT_TRUE(waitForIdle());
  EXPECT_EQ(databases(tabOf()), 4);
  EXPECT_EQ(tabOf()->shownDatabase(), 2);
  EXPECT_EQ(tabOf()->outlets().tableKeys.numberOfRows(), 1);
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
    click(*tabOf()->outlets().btnReconnect.widget());
    const bool anew = waitUntil([&] {
      return status(tabOf()) == "Status:Connected" && databases(tabOf()) == 2 && tabOf()->shownDatabase() == 0;
    });
    return anew && waitForIdle() && tabOf()->outlets().tableKeys.numberOfRows() == 0;
  };
  clickRow(5);
  ASSERT_TRUE(waitForKeys(1));
  server()->setServerPort(smaller.port());
  EXPECT_TRUE(startsAnew());
  EXPECT_EQ(alerts.messages(), Texts());

  clickRow(3);
  ASSERT_TRUE(waitForKeys(1));
  smaller.command({"acl", "setuser", "default", "-select"});
  EXPECT_TRUE(startsAnew());
  ASSERT_EQ(alerts.shown().size(), 1U);
  EXPECT_NE(alerts.messages()[0].find("NOPERM"), std::string::npos);
}

TEST_F(ConnectionCommandsTest, ALostServerShowsInTabAndTreeAndConnectsAgain) {
  RedisServer redis({"--databases", "2"});
  store("local", redis.port());
  openWindow();
  connect();
  clickRow(3);
  ASSERT_TRUE(waitForIdle());

  redis.kill();
  clickRow(2);
  ASSERT_TRUE(waitUntil([&] { return !alerts.shown().empty(); }));
  ASSERT_TRUE(waitForIdle());
  EXPECT_EQ(alerts.messages(), Texts{"Can not connect to server, Please Reconnect to the server."});
  EXPECT_EQ(status(tabOf()), "Status:DisConnected");
  EXPECT_EQ(tabOf()->shownDatabase(), 0);

  redis.start();
  selectRow(1);
  window().clickConnect();
  ASSERT_TRUE(waitUntil([&] { return status(tabOf()) == "Status:Connected"; }));
  EXPECT_EQ(rows(), (Texts{"My Favourite", "local", "db0(0)", "db1(0)"}));

  // Made anew, and then lost, without anyone asking.
  window().bringDatabasesUpToDate(server(), false);
  EXPECT_EQ(rows(), (Texts{"My Favourite", "local"}));
  EXPECT_EQ(status(tabOf()), "Status:DisConnected");
  EXPECT_EQ(databases(tabOf()), 0);
  window().bringDatabasesUpToDate(server(), true);
  EXPECT_EQ(rows(), (Texts{"My Favourite", "local", "db0(0)", "db1(0)"}));
  EXPECT_EQ(status(tabOf()), "Status:Connected");
  EXPECT_EQ(databases(tabOf()), 2);
}

TEST_F(ConnectionCommandsTest, RemovingTakesConnectionTabAndRecordAway) {
  const RedisServer redis;
  store("gone", redis.port());
  store("stays", redis.port());
  openWindow();
  clickRow(1);
  connect();
  clickRow(static_cast<int>(rows().size()) - 1);
  ASSERT_EQ(tabLabels(), (Texts{"gone", "stays"}));
  const std::weak_ptr<OperationTabViewController> tab = tabOf();
  const std::weak_ptr<ServerItem> removed = server();

  selectRow(1);
  click(*window().outlets().btnRem.widget());
  EXPECT_EQ(rows(), (Texts{"My Favourite", "stays"}));
  EXPECT_EQ(tabLabels(), Texts{"stays"});
  EXPECT_TRUE(tab.expired());
  EXPECT_TRUE(waitUntil([&] { return removed.expired(); }));
  EXPECT_EQ(redis.command({"client", "kill", "type", "normal", "skipme", "yes"}), ":0\r\n");
  EXPECT_EQ(FavouritesStore().loadFavourites().size(), 1U);
  EXPECT_FALSE(storeHost.context().hasChanges());
}

}  // namespace tarn::test
