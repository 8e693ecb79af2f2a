#include "tests/wire/WireTest.h"

#include <algorithm>
#include <limits>

namespace tarn::test {
namespace {

constexpr std::int64_t noLimit = std::numeric_limits<std::int64_t>::max();

std::string scanReply(const std::string& cursor, const std::vector<std::string>& keys) {
  std::string reply = "*2\r\n" + bulk(cursor) + "*" + std::to_string(keys.size()) + "\r\n";
  for (const std::string& key : keys)
    reply += bulk(key);
  return reply;
}

using Scanning = WireTest;

TEST_F(Scanning, FindsAllKeysThatMatchUpToTheLimit) {
  RedisServer server({"--enable-debug-command", "yes"});
  server.command({"DEBUG", "POPULATE", "5000"});
  server.command({"SET", std::string("\xFF\0x", 3), "v"});
  const auto client = connectedItem(server.port());
  auto all = client->scanKeys("*"_bytes, noLimit, false);
  std::sort(all.begin(), all.end());
  EXPECT_EQ(all.size(), 5001U);
  EXPECT_EQ(std::unique(all.begin(), all.end()), all.end());
  EXPECT_EQ(client->scanKeys("\xFF*"_bytes, noLimit, false), std::vector{"\xFF\0x"_bytes});
  EXPECT_EQ(client->scanKeys("key:*"_bytes, 1234, false).size(), 1234U);
  EXPECT_TRUE(client->scanKeys("none"_bytes, 10, false).empty());
  EXPECT_TRUE(client->scanKeys("*"_bytes, 0, false).empty());
  EXPECT_EQ(alerts(), Messages{});
}

TEST_F(Scanning, FollowsTheCursorAndStopsAtTheLimit) {
  ScriptedServer peer(answering({noCluster, scanReply("17", {}), scanReply("99", {"a", "b"}), scanReply("0", {"c"}),
                                 noCluster, scanReply("5", {"a", "b"})}));
  const auto client = connectedItem(peer.port());
  EXPECT_EQ(client->scanKeys("p"_bytes, 100, false), (std::vector{"a"_bytes, "b"_bytes, "c"_bytes}));
  EXPECT_EQ(client->scanKeys("p"_bytes, 2, false), (std::vector{"a"_bytes, "b"_bytes}));
  const auto scan = [](const std::string& cursor) {
    return "*6\r\n$4\r\nscan\r\n" + bulk(cursor) + "$5\r\nMATCH\r\n$1\r\np\r\n$5\r\nCOUNT\r\n$4\r\n1000\r\n";
  };
  const std::string nodes = "*2\r\n$7\r\ncluster\r\n$5\r\nnodes\r\n";
  EXPECT_EQ(peer.received().front(), nodes + scan("0") + scan("17") + scan("99") + nodes + scan("0"));
}

TEST_F(Scanning, DropsWhatItFoundWhenACommandOrCursorFails) {
  const std::string noCursor = "Can not get scan cursor from server(994)";
  const std::vector<std::pair<std::string, std::string>> cases{
      {"-ERR over\r\n", "ERR over"},        {"*0\r\n", noCursor}, {"+0\r\n", noCursor}, {"%0\r\n", noCursor},
      {scanReply("\xFF", {"b"}), noCursor},
  };
  for (const auto& [reply, message] : cases) {
    SCOPED_TRACE(reply);
    ScriptedServer peer(answering({noCluster, scanReply("1", {"a"}), reply, scanReply("1", {"a"}), reply}));
    const auto client = connectedItem(peer.port());
    EXPECT_TRUE(client->scanKeys("*"_bytes, 10, false).empty());
    EXPECT_TRUE(client->hscanAll("h"_bytes).empty());
    EXPECT_EQ(alerts(), (Messages{message, message}));
  }
}

TEST_F(Scanning, ReadsWholeSetsAndHashes) {
  RedisServer server;
  server.command({"EVAL", "for i=1,3000 do redis.call('sadd','s','m'..i) redis.call('hset','h','f'..i,i) end", "0"});
  const auto client = connectedItem(server.port());
  EXPECT_EQ(client->sscanAll("s"_bytes).size(), 3000U);
  const auto hash = client->hscanAll("h"_bytes);
  ASSERT_EQ(hash.size(), 6000U);
  for (std::size_t i = 0; i < hash.size(); i += 2)
    EXPECT_EQ(hash[i].view().substr(1), hash[i + 1].view());
}

TEST_F(Scanning, SearchesEveryMasterOfACluster) {
  RedisCluster cluster;
  const auto client = connectedItem(cluster.master(0).port());
  std::vector<Bytes> expected;
  for (int i = 0; i < 60; ++i) {
    expected.emplace_back("key" + std::to_string(i));
    client->setValue(expected.back(), "v"_bytes, -1);
  }
  auto keys = client->scanKeys("key*"_bytes, noLimit, false);
  std::sort(keys.begin(), keys.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(keys, expected);
  EXPECT_EQ(client->scanKeys("*"_bytes, 41, false).size(), 41U);
  EXPECT_LT(client->scanKeys("*"_bytes, noLimit, true).size(), 60U);

  const int deadPort = cluster.master(1).port();
  const std::string lost = cluster.master(1).command({"DBSIZE"});
  cluster.master(1).kill();
  const std::size_t before = openDescriptors();
  EXPECT_EQ(client->scanKeys("*"_bytes, noLimit, false).size(), 60U - std::stoul(lost.substr(1)));
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_EQ(alerts(), Messages{"127.0.0.1:" + std::to_string(deadPort) + ", Connect Failure"});
}

// Two masters that are down: with the connection closed while the first is tried, the second isn't, and nothing is
// told.
TEST_F(Scanning, LeavesTheOtherMastersWhenTheConnectionIsClosed) {
  class Closing final : public SocketCalls {
  public:
    int connect(int descriptor, const sockaddr* address, socklen_t length) override {
      if (++connects == 2) server->closeConnection();
      return SocketCalls::connect(descriptor, address, length);
    }
    ServerItem* server = nullptr;
    int connects = 0;
  };
  RedisServer dead;
  dead.kill();
  const std::string line = "n 127.0.0.1:" + std::to_string(dead.port()) + "@1 master\n";
  ScriptedServer peer(answering({bulk(line + line)}));
  for (const bool scans : {true, false}) {
    SCOPED_TRACE(scans);
    Closing calls;
    const auto client = itemWith(calls, peer.port());
    calls.server = client.get();
    // The connect in progress counts twice: it is asked how it ended.
    calls.connects = -1;
    ASSERT_TRUE(client->connectToServer().ok);
    ASSERT_EQ(calls.connects, 1);
    if (scans) {
      EXPECT_TRUE(client->scanKeys("*"_bytes, noLimit, false).empty());
    } else {
      client->infoFromServerMain();
      waitUntilIdle(*client);
    }
    EXPECT_LE(calls.connects, 3);
    EXPECT_EQ(client->connectionStatus(), ConnectionStatus::notConnected);
    EXPECT_EQ(alerts(), Messages{});
  }
}

}  // namespace
}  // namespace tarn::test
