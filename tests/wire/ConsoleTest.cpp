#include "tests/wire/WireTest.h"
#include "wire/ServerItemHost.h"

namespace tarn::test {
namespace {

class ShowingHost final : public ServerItemHost {
public:
  ShowingHost() { install(this); }
  ~ShowingHost() override { install(nullptr); }

  void reloadServerRow(const std::shared_ptr<ServerItem>&) override { calls.push_back("row"); }
  void refreshServerRow(const std::shared_ptr<ServerItem>&) override {}
  void showStatusInTab(const std::shared_ptr<ServerItem>& server) override {
    calls.push_back("Status:" + std::string(rawValue(server->connectionStatus())));
  }
  void bringDatabasesUpToDate(const std::shared_ptr<ServerItem>&, bool connected) override {
    calls.push_back(connected ? "databases" : "no databases");
  }
  void showSelectedDatabase(const std::shared_ptr<ServerItem>& server) override {
    calls.push_back("db" + std::to_string(server->currentDbIdx()));
  }

  std::vector<std::string> calls;
};

class Console : public WireTest {
protected:
  using Replies = std::vector<std::string>;

  static void waitUntilIdle(ServerItem& client) {
    waitUntil([&] { return client.operationQueue().operationCount() == 0; });
  }

  ShowingHost host_;
};

TEST_F(Console, ShowsTheRepliesOfAServer) {
  RedisServer server({"--databases", "4"});
  const auto client = connectedItem(server.port());
  const auto run = [&](std::string_view line) { return client->executeConsoleCommand(line); };
  EXPECT_EQ(run("ping"), "PONG");
  EXPECT_EQ(run("   "), "");
  EXPECT_EQ(run(R"(set k "unterminated)"), "Invalid Input Command");
  EXPECT_EQ(run(R"(set "a b" c)"), "OK");
  EXPECT_EQ(run(R"(get "a b")"), "c");
  EXPECT_EQ(run(R"(set k a\nb)"), "OK");
  EXPECT_EQ(run("get k"), "a\nb");
  EXPECT_EQ(run(R"(set k a\\nb)"), "OK");
  EXPECT_EQ(server.command({"GET", "k"}), bulk(R"(a\nb)"));
  EXPECT_EQ(run("get missing"), "(nil)");
  EXPECT_EQ(run(R"(set empty "")"), "OK");
  EXPECT_EQ(run("get empty"), "");
  EXPECT_EQ(run("incr n"), "(int)1");
  EXPECT_EQ(run("incr k"), "ERR value is not an integer or out of range");
  EXPECT_EQ(run("keys nomatch"), "(empty list or set)");
  EXPECT_EQ(run("rpush l a b"), "(int)2");
  EXPECT_EQ(run("lrange l 0 -1"), "\n1)\ta\n2)\tb");
  server.command({"SET", "binary", "\xAB\n"});
  EXPECT_EQ(run("get binary"), "\\Bqwo=");
  EXPECT_EQ(run("flushall"), "OK");
  EXPECT_EQ(run("set only 1"), "OK");
  EXPECT_EQ(run("scan 0"), "\n1)\t0\n2)\t1)\tonly\n");
  EXPECT_EQ(run("hello 3"), "(map)");
  EXPECT_EQ(run("hset h f v"), "(int)1");
  EXPECT_EQ(run("hgetall h"), "(map)");
  EXPECT_EQ(run("get only"), "1");
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
  EXPECT_EQ(host_.calls, Replies{});
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
  EXPECT_EQ(host_.calls, (Replies{"db3", "db0"}));

  runs("multi", "OK", 0);
  runs("select 2", "QUEUED", 2);
  runs("set in-transaction 1", "QUEUED", 2);
  client->infoFromServer(true);
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
  EXPECT_EQ(host_.calls, (Replies{"row", "Status:Connected"}));
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
  EXPECT_EQ(host_.calls, (Replies{"row", "Status:NotConnected"}));
}

}  // namespace
}  // namespace tarn::test
