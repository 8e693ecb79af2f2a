#include "platform/foundation/NSRunLoop.h"
#include "tests/wire/WireTest.h"

namespace tarn::test {
namespace {

using Status = ConnectionStatus;
using ServerItemTest = WireTest;

Messages counts(const ServerItem& server) {
  Messages texts;
  for (const auto& db : *server.dbs())
    texts.push_back(db->dbName() + db->keysCount());
  return texts;
}

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
  // While other work runs nothing is sent.
  std::atomic<bool> done = false;
  server->operationQueue().addOperationWithBlock([&] { waitUntil([&] { return done.load(); }); });
  server->infoFromServerMain();
  waitUntil([&] { return server->operationQueue().operationCount() == 1; });
  done = true;
  waitUntilIdle(*server);
  refresh(*server);
  EXPECT_EQ(peer.received().front(), requests("cluster nodes|info"));
  server->closeConnection();
  EXPECT_FALSE(loop.nextFireDate());

  // A timer that was asked for before the close doesn't come after it.
  EXPECT_TRUE(server->connectToServer().ok);
  server->closeConnection();
  NSOperationQueue::mainQueue().drain();
  EXPECT_FALSE(loop.nextFireDate());

  // Nor does it stay when the server goes; one that lives for a single connect has none, and the host knows it not.
  connectedItem(peer.port());
  connectedItem(peer.port())->startLivenessTimer();
  const auto transient = item(peer.port(), {}, SocketCalls::system(), ServerItem::Life::transient);
  EXPECT_TRUE(transient->connectToServer().ok);
  transient->keyType("k"_bytes);
  EXPECT_EQ(alerts(), Messages{"ERR no"});
  EXPECT_EQ(host.calls, Messages{});
  EXPECT_FALSE(loop.nextFireDate());
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
      {count("-1"), {prefix + "933)"}},
      {count("1000001"), {prefix + "933)"}},
  };
  // clang-format on
  std::atomic<std::size_t> next = 0;
  ScriptedServer peer(answeringAll([&](int) { return next < cases.size() ? cases[next].first : count("0"); }));
  const auto client = connectedItem(peer.port());
  for (; next < cases.size(); ++next) {
    SCOPED_TRACE(cases[next].first);
    client->loadDatabases();
    EXPECT_EQ(counts(*client), (Messages{"db0(0)", "db1(0)"}));
    EXPECT_EQ(alerts(), cases[next].second);
  }
  client->loadDatabases();
  EXPECT_TRUE(client->dbs()->empty());
}

TEST_F(ServerItemTest, TakesTheCountsFromInfoAsTheyStand) {
  const std::string odd = "odd\r\ndb0:keys=3\r\ndb0,keys=3\r\na,db0:keys=3\r\n";
  // clang-format off
  const std::vector<std::pair<std::string, Messages>> cases{
      {"-ERR no\r\n", {"db0(5)", "db1(0)"}},
      {bulk("db1:keys=1,\r\n# Keyspace\r\n" + odd + "db1:keys=7,expires=1\r\ndb20:keys=1,x\r\n# Other\r\na:b\r\n"), {"db0(0)", "db1(7)"}},
      {bulk("# Keyspace\r\ndb0:keys=,\r\n"), {"db0()", "db1(0)"}},
      {bulk("# Keyspace\r\ndb0:keys=1,\xFF"), {"db0(0)", "db1(0)"}},
  };
  // clang-format on
  for (const auto& [info, expected] : cases) {
    SCOPED_TRACE(info);
    ScriptedServer peer(answering({noCluster, info}));
    const auto client = connectedItem(peer.port());
    client->setDbs({std::make_shared<DbItem>(0, client), std::make_shared<DbItem>(1, client)});
    client->dbs()->front()->setKeysCount("(5)");
    EXPECT_EQ(refresh(*client), info[0] == '-' ? "" : "counts ");
    EXPECT_EQ(counts(*client), expected);
  }
}

// Nothing that a server goes on sending is taken for the reply to something else, and no line acts on another database:
// the database behind each line is in sight, and carried to the new connection, which has no name.
TEST_F(ServerItemTest, CarriesTheDatabaseOfAConsoleLineAlongAndConnectsAnewWhereMoreThanOneReplyComes) {
  RedisServer server({"--databases", "4"});
  const auto client = connectedItem(server.port());
  struct Line {
    std::string typed;
    std::string reply;
    int database = 0;
    // Of another client, behind it.
    Messages meanwhile = {};
  };
  // clang-format off
  const std::vector<Line> lines{
      {"   ", ""},
      {"\"open", "Invalid Input Command"},
      {R"(set "a b" a\\n)", "OK"},
      {R"(get "a b")", R"(a\n)"},
      {"SELECT 3", "OK", 3},
      {"select 4", "ERR DB index is out of range", 3},
      {"reset", "RESET"},
      {"client setname n", "OK"},
      {"multi", "OK"}, {"select 3", "QUEUED", 3}, {"subscribe a", "QUEUED", 3}, {"discard", "OK"},
      {"multi", "OK"}, {"multi", "ERR MULTI calls can not be nested"}, {"select 2", "QUEUED", 2}, {"set k 1", "QUEUED", 2},
      {"exec", "\n1)\tOK\n2)\tOK", 2},
      {"multi", "OK", 2}, {"select 99", "QUEUED", 99}, {"exec", "\n1)\tERR DB index is out of range", 2},
      {"get k", "1", 2},
      {"multi", "OK", 2}, {"select 3", "QUEUED", 3}, {"sync x", "ERR wrong number of arguments for 'sync' command", 3},
      {"exec", "EXECABORT Transaction discarded because of previous errors.", 2},
      {"watch k", "OK", 2, {"SET", "k", "2"}}, {"multi", "OK", 2}, {"select 3", "QUEUED", 3}, {"exec", "(empty list or set)", 2},
      {"discard", "ERR DISCARD without MULTI", 2},
      {"exec", "ERR EXEC without MULTI", 2},
      {"client getname", "n", 2},
      {"subscribe a b", "\n1)\tsubscribe\n2)\ta\n3)\t(int)1", 2, {"PUBLISH", "a", "x"}},
      {"client getname", "(nil)", 2},
      {"MONITOR", "OK", 2, {"PING"}},
      {"type k", "string", 2},
      {"multi", "OK", 2}, {"select 3", "QUEUED", 3}, {"set k w", "QUEUED", 3}, {"subscribe a b", "QUEUED", 3},
      {"exec", "\n1)\tOK\n2)\tOK\n3)\t1)\tsubscribe\n\t2)\ta\n\t3)\t(int)1\n", 3},
      {"get k", "w", 3},
      {"multi", "OK", 3}, {"select 2", "QUEUED", 2}, {"subscribe a", "QUEUED", 2}, {"reset", "RESET"},
      {"client setname n", "OK"}, {"multi", "OK"}, {"exec", "(empty list or set)"}, {"client getname", "n"},
  };
  // clang-format on
  int before = 0;
  bool isInTransaction = false;
  for (const Line& line : lines) {
    SCOPED_TRACE(line.typed);
    EXPECT_EQ(client->executeConsoleCommand(line.typed), line.reply);
    EXPECT_EQ(client->currentDbIdx(), line.database);
    if (!line.meanwhile.empty()) server.command(line.meanwhile, line.database);
    const bool ends = line.typed == "exec" || line.typed == "discard" || line.typed == "reset";
    isInTransaction = line.typed == "multi" || (isInTransaction && !ends);
    // A refresh in a transaction would queue its commands.
    const std::string moved = line.database == before ? "" : "db" + std::to_string(line.database) + " ";
    EXPECT_EQ(refresh(*client), moved + (isInTransaction ? "" : "counts "));
    before = line.database;
  }
  for (const char* line : {"\"select\" 1", "SELECT 1", "reset", "exec", "Discard"})
    EXPECT_TRUE(ServerItem::mayMoveDatabase(line)) << line;
  for (const char* line : {"get select", "", "select \"1"})
    EXPECT_FALSE(ServerItem::mayMoveDatabase(line)) << line;
}

TEST_F(ServerItemTest, ShowsALostConnectionInTheConsoleAndGoesBackToItsDatabase) {
  RedisServer server;
  const auto client = connectedItem(server.port());
  ASSERT_TRUE(client->selectDb(2));
  server.kill();
  server.start();
  const std::string text = "Can not connect to server";
  EXPECT_EQ(client->executeConsoleCommand("set k v"), text);
  EXPECT_EQ(client->currentDbIdx(), 2);
  server.kill();
  EXPECT_EQ(client->executeConsoleCommand("get k"), text);
  EXPECT_EQ(alerts(), (Messages{text, text, "Can not connect to Server(a)."}));
  EXPECT_EQ(client->connectionStatus(), Status::disConnected);

  // Where there is none at all, one is made in the background, for all lines that ask for it meanwhile.
  const std::string lost = "Connection lost.";
  EXPECT_EQ(client->executeConsoleCommand("get k"), lost);
  waitUntilIdle(*client);
  EXPECT_EQ(alerts(), Messages{lost});
  EXPECT_EQ(host.calls.back(), "no databases");
  server.start();
  std::atomic<bool> go = false;
  client->operationQueue().addOperationWithBlock([&] { waitUntil([&] { return go.load(); }); });
  for (int line = 0; line < 2; ++line)
    EXPECT_EQ(client->executeConsoleCommand("get k"), lost);
  go = true;
  waitUntilIdle(*client);
  EXPECT_EQ(alerts(), Messages{lost});
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
