#include "tests/wire/WireTest.h"

#include <algorithm>

namespace tarn::test {
namespace {

using Cluster = WireTest;

TEST_F(Cluster, IsReadAndWrittenThroughOneOfItsNodes) {
  RedisCluster cluster({"--requirepass", "pw", "--masterauth", "pw"});
  const auto client = connectedItem(cluster.master(0).port(), "pw");
  const std::size_t before = openDescriptors();
  client->loadDatabases();
  const auto shownCount = [&] {
    refresh(*client);
    return client->dbs()->front()->keysCount();
  };
  std::vector<Bytes> expected;
  for (int i = 0; i < 60; ++i) {
    expected.emplace_back("key" + std::to_string(i));
    EXPECT_TRUE(client->setValue(expected.back(), expected.back(), -1));
    EXPECT_EQ(client->getValue(expected.back()), std::pair(true, expected.back()));
  }
  auto keys = client->scanKeys("key*"_bytes, noLimit, false);
  std::sort(keys.begin(), keys.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(keys, expected);
  EXPECT_EQ(client->scanKeys("*"_bytes, 41, false).size(), 41U);
  EXPECT_LT(client->scanKeys("*"_bytes, noLimit, true).size(), 60U);
  EXPECT_EQ(shownCount(), "(60)");

  const int deadPort = cluster.master(1).port();
  const std::size_t left = 60 - std::stoul(cluster.master(1).command({"DBSIZE"}).substr(1));
  cluster.master(1).kill();
  EXPECT_EQ(client->scanKeys("*"_bytes, noLimit, false).size(), left);
  EXPECT_EQ(alerts(), Messages{"127.0.0.1:" + std::to_string(deadPort) + ", Connect Failure"});
  EXPECT_EQ(shownCount(), "(" + std::to_string(left) + ")");
  EXPECT_TRUE(client->isAlive());
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_EQ(alerts(), Messages{});
}

TEST_F(Cluster, EndsRedirectsThatLeadNowhere) {
  RedisServer dead;
  dead.kill();
  std::atomic<int> port = 0;
  std::atomic<std::size_t> next = 0;
  const std::string gone = "127.0.0.1:" + std::to_string(dead.port());
  ScriptedServer peer(answeringAll([&](int) {
    const Messages errors{"ASK 1 127.0.0.1:" + std::to_string(port), "MOVED 1 h:x", "MOVED 1 " + gone,
                          "ERR MOVED 1 h:1"};
    return "-" + errors[next] + "\r\n";
  }));
  port = peer.port();
  const std::size_t before = openDescriptors();
  const auto client = connectedItem(peer.port());
  for (const std::string& message : {"The cluster redirects without end: ASK 1 127.0.0.1:" + std::to_string(port),
                                     std::string("Can not read the redirect of the cluster: MOVED 1 h:x"),
                                     "Can not connect to cluster node server(" + gone + ")"}) {
    const auto result = client->execute(RedisCommand::get, {"k"});
    EXPECT_FALSE(result.ok || result.type);
    EXPECT_EQ(result.message, message);
    EXPECT_EQ(client->connectionStatus(), ConnectionStatus::connected);
    EXPECT_TRUE(client->isAlive());
    ++next;
  }
  EXPECT_EQ(peer.connections(), 1 + 16);
  EXPECT_EQ(client->execute(RedisCommand::get, {"k"}).type, ReplyType::REDIS_REPLY_ERROR);
  client->closeConnection();
  waitUntil([&] { return openDescriptors() == before; });
}

// Two masters that are down: with the connection closed while the first is tried, the second isn't, and nothing is
// shown.
TEST_F(Cluster, LeavesTheOtherMastersWhenTheConnectionIsClosed) {
  class ClosingCalls final : public SocketCalls {
  public:
    int socket(int family, int type, int protocol) override {
      if (++sockets == 2) server->closeConnection();
      return SocketCalls::socket(family, type, protocol);
    }
    ServerItem* server = nullptr;
    int sockets = 0;
  };
  RedisServer dead;
  dead.kill();
  const std::string line = "n 127.0.0.1:" + std::to_string(dead.port()) + "@1 master\n";
  ScriptedServer peer(answering({bulk(line + line)}));
  for (const bool scans : {true, false}) {
    SCOPED_TRACE(scans);
    ClosingCalls calls;
    const auto client = item(peer.port(), {}, calls);
    calls.server = client.get();
    ASSERT_TRUE(client->connectToServer().ok);
    if (scans) {
      EXPECT_TRUE(client->scanKeys("*"_bytes, noLimit, false).empty());
    } else {
      refresh(*client);
    }
    EXPECT_EQ(calls.sockets, 2);
    EXPECT_EQ(client->connectionStatus(), ConnectionStatus::notConnected);
    EXPECT_EQ(alerts(), Messages{});
    EXPECT_EQ(host.calls, Messages{});
  }
}

}  // namespace
}  // namespace tarn::test
