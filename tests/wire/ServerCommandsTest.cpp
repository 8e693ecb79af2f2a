#include "tests/wire/WireTest.h"
#include "wire/command/KeyWriting.h"

#include <algorithm>

namespace tarn::test {
namespace {

using Cluster = WireTest;
using ServerCommandsTest = WireTest;
using Call = std::function<std::string(ServerItem&)>;

std::string shown(bool done) {
  return done ? "true" : "false";
}
std::string shown(const std::pair<bool, Bytes>& result) {
  return shown(result.first) + " " + std::string(result.second.view());
}
std::string shown(const std::vector<Bytes>& list) {
  std::string text = "[";
  for (const Bytes& element : list)
    text += std::string(element.view()) + ",";
  return text + "]";
}
std::string shown(const std::optional<std::vector<Bytes>>& found) {
  return found ? shown(*found) : "nothing";
}

template <typename Method, typename... Arguments>
Call on(Method method, Arguments... arguments) {
  return [=](ServerItem& server) { return shown((server.*method)(arguments...)); };
}

std::string scanReply(const std::string& cursor, const Messages& elements) {
  std::string reply = "*2\r\n" + bulk(cursor) + "*" + std::to_string(elements.size()) + "\r\n";
  for (const std::string& element : elements)
    reply += bulk(element);
  return reply;
}

TEST_F(ServerCommandsTest, SendWhatIsStatedReadTheRepliesAndShowOneAlertForEachFailure) {
  using S = ServerItem;
  const Bytes k = "k"_bytes;
  const std::string zero = "*2\r\n$1\r\n0\r\n$2\r\n\xFF\r\r\n";
  const std::string noCursor = "Can not get scan cursor from server(994)";
  struct Case {
    Call call;
    Messages replies;
    std::string result;
    std::string sent;
    Messages alerts = {};
  };
  // clang-format off
  const std::vector<Case> cases{
      {on(&S::getValue, k), {"$2\r\n\xFF\r\r\n"}, "true \xFF\r", "get k"},
      {on(&S::getValue, k), {"_\r\n"}, "true ", "get k"},
      {on(&S::lrangeAll, k), {zero}, "[0,\xFF\r,]", "lrange k 0 -1"},
      {on(&S::lrangeAll, k), {"*0\r\n"}, "[]", "lrange k 0 -1"},
      {on(&S::lrangeAll, k), {"-ERR\r\n"}, "nothing", "lrange k 0 -1", {"ERR"}},
      {on(&S::zrangeAll, k), {zero}, "[0,\xFF\r,]", "zrange k 0 -1 withscores"},
      {on(&S::deleteKey, k), {":0\r\n"}, "true", "del k"},
      // Up to the limit.
      {on(&S::scanKeys, k, 100, false), {noCluster, scanReply("17", {}), scanReply("99", {"a", "b"}), scanReply("0", {"c"})}, "[a,b,c,]",
       "cluster nodes|scan 0 MATCH k COUNT 1000|scan 17 MATCH k COUNT 1000|scan 99 MATCH k COUNT 1000"},
      {on(&S::scanKeys, k, 2, false), {noCluster, scanReply("5", {"a", "b"})}, "[a,b,]", "cluster nodes|scan 0 MATCH k COUNT 1000"},
      {on(&S::scanKeys, k, 1, false), {noCluster, scanReply("0", {"a", "b"})}, "[a,]", "cluster nodes|scan 0 MATCH k COUNT 1000"},
      {on(&S::scanKeys, k, 0, false), {noCluster, scanReply("5", {"a"})}, "[]", "cluster nodes|scan 0 MATCH k COUNT 1000"},
      // What a scan gives twice, while a set or hash is rehashed, stands twice: the rows are what the server said.
      {on(&S::sscanAll, k), {scanReply("7", {"a", "b"}), scanReply("0", {"b"})}, "[a,b,b,]", "sscan k 0 COUNT 1000|sscan k 7 COUNT 1000"},
      {on(&S::hscanAll, k), {scanReply("7", {"f", "1"}), scanReply("0", {"f", "1"})}, "[f,1,f,1,]",
       "hscan k 0 COUNT 1000|hscan k 7 COUNT 1000"},
      // With the rest goes what was found before.
      {on(&S::sscanAll, k), {scanReply("1", {"a"}), "-ERR over\r\n"}, "nothing", "sscan k 0 COUNT 1000|sscan k 1 COUNT 1000", {"ERR over"}},
      {on(&S::sscanAll, k), {scanReply("1", {"a"}), "*0\r\n"}, "nothing", "sscan k 0 COUNT 1000|sscan k 1 COUNT 1000", {noCursor}},
      {on(&S::sscanAll, k), {scanReply("1", {"a"}), "+0\r\n"}, "nothing", "sscan k 0 COUNT 1000|sscan k 1 COUNT 1000", {noCursor}},
      {on(&S::scanKeys, k, 9, false), {noCluster, scanReply("\xFF", {"b"})}, "[]", "cluster nodes|scan 0 MATCH k COUNT 1000", {noCursor}},
  };
  // clang-format on
  for (const Case& expected : cases) {
    SCOPED_TRACE(expected.sent + " of row " + std::to_string(&expected - cases.data()));
    ScriptedServer peer(answering(expected.replies));
    EXPECT_EQ(expected.call(*connectedItem(peer.port())), expected.result);
    EXPECT_EQ(alerts(), expected.alerts);
    EXPECT_EQ(peer.received().front(), requests(expected.sent));
  }
}

TEST_F(Cluster, IsReadAndWrittenThroughOneOfItsNodes) {
  RedisCluster cluster({"--requirepass", "pw", "--masterauth", "pw"});
  const auto client = connectedItem(cluster.master(0).port(), "pw");
  const std::size_t before = openDescriptors();
  client->loadDatabases();
  const auto shownCount = [&] {
    refresh(*client);
    return client->dbs()->front()->keysCount();
  };
  // Each key comes from another one, on the same node or not, in the same slot or not.
  std::vector<Bytes> expected;
  for (int i = 0; i < 60; ++i) {
    const std::string name = "key" + std::to_string(i);
    const Bytes before(i % 2 == 0 ? "{" + name + "}" : "old" + name);
    ASSERT_TRUE(client->execute(RedisCommand::sadd, {before.view(), "member"}).ok);
    expected.emplace_back(name);
    KeyWriting writing(expected.back(), 60);
    writing.moveFrom(before);
    const std::vector<Bytes> items{expected.back()};
    writing.setList(items);
    const WriteOutcome outcome = client->write(writing);
    EXPECT_TRUE(outcome.isWritten && outcome.isOldKeyGone) << outcome.message;
    EXPECT_EQ(client->lrangeAll(expected.back()), items);
    EXPECT_EQ(client->keyType(before).second, "none");
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

// The second master isn't asked where the connection is closed while the first is, and nothing is shown.
TEST_F(Cluster, LeavesTheOtherMastersWhenTheConnectionIsClosed) {
  for (const bool scans : {true, false}) {
    std::atomic<int> port = 0;
    std::atomic<bool> asked = false, closed = false;
    ScriptedServer peer([&](Peer& client, int connection) {
      const std::string line = "n 127.0.0.1:" + std::to_string(port) + "@1 master\n";
      if (connection == 0) return answering({"+OK\r\n", bulk(line + line)})(client, 0);
      client.readRequest();
      asked = true;
      waitUntil([&] { return closed.load(); });
    });
    port = peer.port();
    const auto client = connectedItem(peer.port(), "password");
    if (scans) {
      client->operationQueue().addOperationWithBlock(
          [&] { EXPECT_TRUE(client->scanKeys("*"_bytes, noLimit, false).empty()); });
    } else {
      client->infoFromServerMain();
    }
    waitUntil([&] { return asked.load(); });
    client->closeConnection();
    closed = true;
    waitUntilIdle(*client);
    EXPECT_EQ(peer.connections(), 2);
    EXPECT_EQ(client->connectionStatus(), ConnectionStatus::notConnected);
    EXPECT_EQ(alerts(), Messages{});
    EXPECT_EQ(host.calls, Messages{});
  }
}

}  // namespace
}  // namespace tarn::test
