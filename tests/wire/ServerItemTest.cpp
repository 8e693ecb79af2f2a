#include "platform/foundation/NSRunLoop.h"
#include "tests/wire/WireTest.h"

namespace tarn::test {
namespace {

using Status = ConnectionStatus;

class ServerItemTest : public WireTest {
protected:
  static Messages counts(const ServerItem& server) {
    Messages texts;
    for (const auto& db : *server.dbs())
      texts.push_back(db->dbName() + db->keysCount());
    return texts;
  }
};

TEST_F(ServerItemTest, RefreshesEveryThreeSecondsUntilItIsClosed) {
  ScriptedServer peer(answeringAll([](int) { return "-ERR no\r\n"; }));
  const auto server = connectedItem(peer.port());
  auto& loop = NSRunLoop::mainRunLoop();
  EXPECT_FALSE(loop.nextFireDate());
  const auto before = NSRunLoop::Clock::now();
  NSOperationQueue::mainQueue().drain();
  ASSERT_TRUE(loop.nextFireDate());
  EXPECT_GE(*loop.nextFireDate(), before + std::chrono::seconds(3));
  EXPECT_LE(*loop.nextFireDate(), NSRunLoop::Clock::now() + std::chrono::seconds(3));
  // In place of the one that runs, not beside it.
  server->startLivenessTimer();
  refresh(*server);
  EXPECT_EQ(peer.received().front(), requests("cluster nodes|info"));
  server->closeConnection();
  EXPECT_FALSE(loop.nextFireDate());

  // A timer that was asked for before the close doesn't come after it.
  EXPECT_TRUE(server->connectToServer().ok);
  server->closeConnection();
  NSOperationQueue::mainQueue().drain();
  EXPECT_FALSE(loop.nextFireDate());

  // Nor does it stay when the server goes; one that lives for a single connect has none.
  connectedItem(peer.port());
  connectedItem(peer.port())->startLivenessTimer();
  const auto transient = item(peer.port(), {}, SocketCalls::system(), ServerItem::Life::transient);
  EXPECT_TRUE(transient->connectToServer().ok);
  NSOperationQueue::mainQueue().drain();
  EXPECT_FALSE(loop.nextFireDate());
}

TEST_F(ServerItemTest, SaysThatItsConnectionIsGone) {
  for (const auto& [life, calls] : {std::pair(ServerItem::Life::favourite, Messages{"row", "Status:DisConnected"}),
                                    {ServerItem::Life::transient, {}}}) {
    const auto client = item(1, {}, SocketCalls::system(), life);
    EXPECT_FALSE(client->keyType("k"_bytes).first);
    EXPECT_EQ(alerts(), Messages{"Can not connect to server, Please Reconnect to the server."});
    EXPECT_EQ(std::exchange(host.calls, {}), calls);
  }
}

// Nothing is sent while other work waits or runs.
TEST_F(ServerItemTest, LeavesTheCountsWhileItsQueueHasOtherWork) {
  ScriptedServer peer(answering({}));
  const auto client = connectedItem(peer.port());
  std::atomic<bool> done = false;
  client->operationQueue().addOperationWithBlock([&] { waitUntil([&] { return done.load(); }); });
  client->infoFromServerMain();
  waitUntil([&] { return client->operationQueue().operationCount() == 1 && peer.connections() == 1; });
  done = true;
  waitUntilIdle(*client);
  EXPECT_EQ(peer.received().front(), "");
}

TEST_F(ServerItemTest, TellsADatabaseCountThatCannotBeReadAndKeepsTheDatabases) {
  const auto count = [](const std::string& text) { return "*2\r\n" + bulk("databases") + bulk(text); };
  const std::string prefix = "Can not cover database count string to Int(";
  // clang-format off
  const std::vector<std::pair<std::string, Messages>> cases{
      {count("2"), {}},
      {"-ERR unknown command\r\n", {"ERR unknown command"}},
      {"+OK\r\n", {prefix + "907)"}},
      {"*0\r\n", {prefix + "915)"}},
      {"*1\r\n$2\r\n16\r\n", {prefix + "915)"}},
      {count("1\xFF"), {prefix + "940)"}},
      {count(""), {prefix + "933)"}},
      {count("abc"), {prefix + "933)"}},
      {count("-1"), {prefix + "933)"}},
      {count("1000001"), {prefix + "933)"}},
  };
  // clang-format on
  std::atomic<std::size_t> next = 0;
  ScriptedServer peer(answeringAll([&](int) { return next < cases.size() ? cases[next].first : count("0"); }));
  const auto client = connectedItem(peer.port());
  std::string asked;
  for (; next < cases.size(); ++next) {
    SCOPED_TRACE(cases[next].first);
    client->loadDatabases();
    EXPECT_EQ(counts(*client), (Messages{"db0(0)", "db1(0)"}));
    EXPECT_EQ(alerts(), cases[next].second);
    asked += requests("config get databases");
  }
  EXPECT_EQ(client->dbs()->at(1)->dbIdx(), 1);
  EXPECT_EQ(client->dbs()->at(1)->parent(), client);
  EXPECT_EQ(peer.received().front(), asked);
  client->loadDatabases();
  EXPECT_TRUE(client->dbs()->empty());
}

TEST_F(ServerItemTest, TakesTheCountsFromInfoAsTheyStand) {
  // clang-format off
  const std::vector<std::pair<std::string, Messages>> cases{
      {"-ERR no\r\n", {"db0(5)", "db1(0)"}},
      {bulk("# Keyspace\r\ndb1:keys=7,expires=1\r\ndb20:keys=1,x\r\n# Other\r\na:b\r\n"), {"db0(0)", "db1(7)"}},
      {bulk("# Keyspace\r\n"), {"db0(0)", "db1(0)"}},
      {bulk("# Keyspace\r\ndb0:keys=1,\xFF"), {"db0(0)", "db1(0)"}},
  };
  // clang-format on
  for (const auto& [info, expected] : cases) {
    SCOPED_TRACE(info);
    ScriptedServer peer(answering({noCluster, info}));
    const auto client = connectedItem(peer.port());
    client->setDbs({std::make_shared<DbItem>(0, client), std::make_shared<DbItem>(1, client)});
    client->dbs()->front()->setKeysCount("(5)");
    refresh(*client);
    EXPECT_EQ(counts(*client), expected);
    EXPECT_EQ(alerts(), Messages{});
    EXPECT_EQ(std::exchange(host.calls, {}), info[0] == '-' ? Messages{} : Messages{"counts"});
  }
}

// Nothing that a server goes on sending is ever taken for the reply to something else: the connection is made anew, and
// stands on its database again.
TEST_F(ServerItemTest, CarriesTheDatabaseOfAConsoleLineAlongAndConnectsAnewWhereMoreThanOneReplyComes) {
  RedisServer server({"--databases", "4"});
  const auto client = connectedItem(server.port());
  struct Line {
    std::string typed;
    std::string reply;
    int database;
    // Of another client, behind it: what is pushed for it.
    Messages meanwhile = {};
  };
  // clang-format off
  const std::vector<Line> lines{
      {"   ", "", 0},
      {"\"open", "Invalid Input Command", 0},
      {R"(set "a b" a\\n)", "OK", 0},
      {R"(get "a b")", R"(a\n)", 0},
      {"SELECT 3", "OK", 3},
      {"select 4", "ERR DB index is out of range", 3},
      {"reset", "RESET", 0},
      {"multi", "OK", 0},
      {"select 2", "QUEUED", 2},
      // A refresh would queue its commands behind it.
      {"set k 1", "QUEUED", 2},
      {"exec", "\n1)\tOK\n2)\tOK", 2},
      {"multi", "OK", 2},
      {"select 99", "QUEUED", 99},
      {"exec", "\n1)\tERR DB index is out of range", 2},
      {"get k", "1", 2},
      {"subscribe a b", "\n1)\tsubscribe\n2)\ta\n3)\t(int)1", 2, {"PUBLISH", "a", "x"}},
      {"set k v", "OK", 2},
      {"MONITOR", "OK", 2, {"PING"}},
      {"type k", "string", 2},
      // Also where a transaction ends with it, in another database.
      {"multi", "OK", 2},
      {"select 3", "QUEUED", 3},
      {"set k w", "QUEUED", 3},
      {"subscribe a b", "QUEUED", 3},
      {"exec", "\n1)\tOK\n2)\tOK\n3)\t1)\tsubscribe\n\t2)\ta\n\t3)\t(int)1\n", 3},
      {"get k", "w", 3},
  };
  // clang-format on
  for (const Line& line : lines) {
    EXPECT_EQ(client->executeConsoleCommand(line.typed), line.reply) << line.typed;
    EXPECT_EQ(client->currentDbIdx(), line.database) << line.typed;
    if (!line.meanwhile.empty()) server.command(line.meanwhile);
    if (line.typed == "set k 1") refresh(*client);
  }
  EXPECT_EQ(host.calls, (Messages{"db3", "db0", "db2", "db99", "db2", "db3"}));
  EXPECT_EQ(server.command({"GET", "k"}, 2), bulk("v"));
  EXPECT_EQ(alerts(), Messages{});
}

TEST_F(ServerItemTest, ShowsALostConnectionInTheConsoleAndGoesBackToItsDatabase) {
  RedisServer server;
  const auto client = connectedItem(server.port());
  ASSERT_TRUE(client->selectDb(2));
  server.kill();
  server.start();
  const std::string text = "Can not connect to server";
  EXPECT_EQ(client->executeConsoleCommand("set k v"), text);
  EXPECT_EQ(client->connectionStatus(), Status::connected);
  EXPECT_EQ(client->currentDbIdx(), 2);
  EXPECT_EQ(alerts(), Messages{text});
  EXPECT_EQ(host.calls, (Messages{"row", "Status:Connected"}));
  server.kill();
  EXPECT_EQ(client->executeConsoleCommand("get k"), text);
  EXPECT_EQ(alerts(), (Messages{text, "Can not connect to Server(a)."}));
  EXPECT_EQ(client->connectionStatus(), Status::disConnected);

  // Where there is none at all, one is made in the background.
  host.calls.clear();
  EXPECT_EQ(client->executeConsoleCommand("get k"), "Connection lost.");
  waitUntilIdle(*client);
  EXPECT_EQ(alerts(), Messages{"Connection lost."});
  EXPECT_EQ(host.calls.back(), "no databases");
  server.start();
  std::atomic<bool> go = false;
  client->operationQueue().addOperationWithBlock([&] { waitUntil([&] { return go.load(); }); });
  EXPECT_EQ(client->executeConsoleCommand("get k"), "Connection lost.");
  EXPECT_EQ(client->executeConsoleCommand("get k"), "Connection lost.");
  go = true;
  waitUntilIdle(*client);
  EXPECT_EQ(alerts(), Messages{"Connection lost."});
  EXPECT_EQ(host.calls.back(), "databases");
  EXPECT_EQ(client->dbs()->size(), 16U);
  EXPECT_EQ(client->executeConsoleCommand("get k"), "(nil)");
}

// The old line has no say about the new connection: one reconnect, and the bytes there belong to the next line.
TEST_F(ServerItemTest, ReadsNothingMoreForAConsoleLineWhoseReplyBrokeOff) {
  ScriptedServer server(
      answeringAll([](int connection) { return connection == 0 ? "*3\r\n+a\r\n$x\r\n+c\r\n" : "+next\r\n"; }));
  const auto client = connectedItem(server.port());
  const std::string message = "(Err) Server reply Error, unrecognized reply count(775)";
  EXPECT_EQ(client->executeConsoleCommand("keys *"), "\n1)\ta\n2)\t" + message);
  EXPECT_EQ(alerts(), Messages{message});
  EXPECT_EQ(client->executeConsoleCommand("ping"), "next");
  EXPECT_EQ(server.connections(), 2);
}

TEST_F(ServerItemTest, SaysNothingOfAReconnectThatTheUserClosed) {
  ScriptedServer server(answeringAll([](int) { return ""; }));
  const auto client = item(server.port(), "password");
  EXPECT_EQ(client->executeConsoleCommand("ping"), "Connection lost.");
  waitUntil([&] { return client->connectionStatus() == Status::connected; });
  client->closeConnection();
  waitUntilIdle(*client);
  EXPECT_EQ(alerts(), Messages{"Connection lost."});
  EXPECT_EQ(client->connectionStatus(), Status::notConnected);
  EXPECT_EQ(host.calls, (Messages{"row", "Status:NotConnected"}));
}

}  // namespace
}  // namespace tarn::test
