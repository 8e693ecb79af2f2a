#include "tests/wire/WireTest.h"

namespace tarn::test {
namespace {

using Console = WireTest;

TEST_F(Console, ShowsTheRepliesOfAServer) {
  RedisServer server;
  server.command({"SET", "binary", "\xAB\n"});
  const auto client = connectedItem(server.port());
  const std::vector<std::pair<std::string_view, std::string>> lines{
      {"   ", ""},
      {R"(set k "unterminated)", "Invalid Input Command"},
      {"scan 0", "\n1)\t0\n2)\t1)\tbinary\n"},
      {"get binary", "\\Bqwo="},
      {R"(set "a b" a\\nb)", "OK"},
      {R"(get "a b")", R"(a\nb)"},
      {R"(set k a\nb)", "OK"},
      {"get k", "a\nb"},
      {R"(set empty "")", "OK"},
      {"get empty", ""},
      {"get missing", "(nil)"},
      {"incr k", "ERR value is not an integer or out of range"},
      {"keys nomatch", "(empty list or set)"},
      {"rpush l a b", "(int)2"},
      {"lrange l 0 -1", "\n1)\ta\n2)\tb"},
      {"hello 3", "(map)"},
      {"hset h f v", "(int)1"},
      {"hgetall h", "(map)"},
      {"ping", "PONG"},
  };
  for (const auto& [line, reply] : lines)
    EXPECT_EQ(client->executeConsoleCommand(line), reply) << line;
  EXPECT_EQ(alerts(), Messages{});
}

// Nothing that a server goes on sending is ever taken for the reply to something else.
TEST_F(Console, MakesTheConnectionAnewWhereMoreThanOneReplyComes) {
  RedisServer server;
  const auto client = connectedItem(server.port());
  ASSERT_TRUE(client->selectDb(2));
  EXPECT_EQ(client->executeConsoleCommand("subscribe a b"), "\n1)\tsubscribe\n2)\ta\n3)\t(int)1");
  server.command({"PUBLISH", "a", "x"});
  EXPECT_EQ(client->executeConsoleCommand("set k v"), "OK");
  EXPECT_EQ(server.command({"GET", "k"}, 2), bulk("v"));
  EXPECT_EQ(client->executeConsoleCommand("MONITOR"), "OK");
  server.command({"PING"});
  EXPECT_EQ(client->keyType("k"_bytes).second, "string");
  EXPECT_EQ(alerts(), Messages{});
  EXPECT_EQ(host_.calls, Messages{});
}

TEST_F(Console, CarriesTheDatabaseAlong) {
  RedisServer server({"--databases", "4"});
  const auto client = connectedItem(server.port());
  const auto runs = [&](const std::string& line, const std::string& reply, int database) {
    EXPECT_TRUE(client->executeConsoleCommand(line).starts_with(reply)) << line;
    EXPECT_EQ(client->currentDbIdx(), database) << line;
  };
  runs("SELECT 3", "OK", 3);
  runs("select 4", "ERR", 3);
  runs("reset", "RESET", 0);
  EXPECT_EQ(host_.calls, (Messages{"db3", "db0"}));

  runs("multi", "OK", 0);
  runs("select 2", "QUEUED", 2);
  runs("set in-transaction 1", "QUEUED", 2);
  client->infoFromServerMain();
  waitUntilIdle(*client);
  runs("exec", "\n1)\tOK\n2)\tOK", 2);
  EXPECT_EQ(server.command({"GET", "in-transaction"}, 2), bulk("1"));

  runs("multi", "OK", 2);
  runs("select 1", "QUEUED", 1);
  runs("discard", "OK", 2);
  runs("multi", "OK", 2);
  runs("select 99", "QUEUED", 99);
  runs("exec", "\n1)\tERR", 2);
  runs("get in-transaction", "1", 2);
}

TEST_F(Console, ShowsALostConnectionAndGoesBackToItsDatabase) {
  RedisServer server;
  const auto client = connectedItem(server.port());
  ASSERT_TRUE(client->selectDb(2));
  server.kill();
  server.start();
  const std::string text = client->executeConsoleCommand("set k v");
  EXPECT_EQ(text, "Can not connect to server");
  EXPECT_EQ(client->connectionStatus(), ConnectionStatus::connected);
  EXPECT_EQ(client->currentDbIdx(), 2);
  EXPECT_EQ(alerts(), Messages{text});
  EXPECT_EQ(host_.calls, (Messages{"row", "Status:Connected"}));
  EXPECT_EQ(client->executeConsoleCommand("set k v"), "OK");
  EXPECT_EQ(server.command({"GET", "k"}, 2), bulk("v"));

  server.kill();
  EXPECT_EQ(client->executeConsoleCommand("get k"), "Can not connect to server");
  EXPECT_EQ(alerts(), (Messages{"Can not connect to server", "Can not connect to Server(a)."}));
  EXPECT_EQ(client->connectionStatus(), ConnectionStatus::disConnected);
}

TEST_F(Console, ReconnectsInTheBackgroundWhereThereIsNoConnection) {
  RedisServer server({"--databases", "4"});
  const auto client = item(server.port());
  EXPECT_EQ(client->executeConsoleCommand("get k"), "Connection lost.");
  waitUntilIdle(*client);
  EXPECT_EQ(alerts(), Messages{"Connection lost."});
  EXPECT_EQ(host_.calls.back(), "databases");
  EXPECT_EQ(client->dbs()->size(), 4U);
  EXPECT_EQ(client->executeConsoleCommand("get k"), "(nil)");

  server.kill();
  client->closeConnection();
  host_.calls.clear();
  EXPECT_EQ(client->executeConsoleCommand("get k"), "Connection lost.");
  waitUntilIdle(*client);
  EXPECT_EQ(alerts(), Messages{"Connection lost."});
  EXPECT_EQ(host_.calls.back(), "no databases");
  EXPECT_EQ(client->connectionStatus(), ConnectionStatus::disConnected);
}

// The old line has no say about the new connection: one reconnect, and the bytes there belong to the next line.
TEST_F(Console, ReadsNothingMoreForALineWhoseReplyBrokeOff) {
  ScriptedServer server([](ScriptedServer::Peer& peer, int connection) {
    while (!peer.readRequest().empty()) {
      peer.send(connection == 0 ? "*3\r\n+a\r\n$x\r\n+c\r\n" : "+next\r\n");
    }
  });
  const auto client = connectedItem(server.port());
  const std::string message = "(Err) Server reply Error, unrecognized reply count(775)";
  EXPECT_EQ(client->executeConsoleCommand("keys *"), "\n1)\ta\n2)\t" + message);
  EXPECT_EQ(alerts(), Messages{message});
  EXPECT_EQ(client->executeConsoleCommand("ping"), "next");
  EXPECT_EQ(server.connections(), 2);
}

TEST_F(Console, SaysNothingOfAReconnectThatTheUserClosed) {
  ScriptedServer server([](ScriptedServer::Peer& peer, int) {
    while (!peer.readRequest().empty()) {
    }
  });
  const auto client = item(server.port(), "password");
  EXPECT_EQ(client->executeConsoleCommand("ping"), "Connection lost.");
  waitUntil([&] { return client->connectionStatus() == ConnectionStatus::connected; });
  client->closeConnection();
  waitUntilIdle(*client);
  EXPECT_EQ(alerts(), Messages{"Connection lost."});
  EXPECT_EQ(client->connectionStatus(), ConnectionStatus::notConnected);
  EXPECT_EQ(host_.calls, (Messages{"row", "Status:NotConnected"}));
}

}  // namespace
}  // namespace tarn::test
