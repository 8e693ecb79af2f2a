#include "tests/wire/WireTest.h"

#include <algorithm>

namespace tarn::test {
namespace {

using namespace std::string_literals;

std::string scanReply(const std::string& cursor, const Messages& elements) {
  std::string reply = "*2\r\n" + bulk(cursor) + "*" + std::to_string(elements.size()) + "\r\n";
  for (const std::string& element : elements)
    reply += bulk(element);
  return reply;
}

using ServerCommandsTest = WireTest;

TEST_F(ServerCommandsTest, WriteAndReadEachType) {
  RedisServer server({"--databases", "4"});
  const auto client = connectedItem(server.port());
  EXPECT_TRUE(client->selectDb(3));
  EXPECT_TRUE(client->setValue("s"_bytes, "\0\xFF"_bytes, 100));
  EXPECT_TRUE(client->pushListItems("l"_bytes, {"b"_bytes, ""_bytes, "a"_bytes}, -1));
  EXPECT_TRUE(client->addSetMembers("u"_bytes, {"m"_bytes, "m"_bytes}, -1));
  EXPECT_TRUE(client->setHashFields("h"_bytes, {"f"_bytes, "g"_bytes}, {"1"_bytes, "2"_bytes}, -1));
  EXPECT_TRUE(client->addSortedSetMembers("z"_bytes, {"2.5", "-1"}, {"x"_bytes, "y"_bytes}, 50));
  EXPECT_EQ(server.command({"DBSIZE"}, 3), ":5\r\n");
  for (const auto& [key, type] :
       {std::pair("s", "string"), {"l", "list"}, {"u", "set"}, {"h", "hash"}, {"z", "zset"}, {"?", "none"}})
    EXPECT_EQ(client->keyType(Bytes(key)), std::pair(true, std::string(type)));

  EXPECT_EQ(client->getValue("s"_bytes), std::pair(true, "\0\xFF"_bytes));
  EXPECT_EQ(client->getValue("?"_bytes), std::pair(true, Bytes()));
  EXPECT_EQ(client->lrangeAll("l"_bytes), (std::vector{"b"_bytes, ""_bytes, "a"_bytes}));
  EXPECT_EQ(client->sscanAll("u"_bytes), std::vector{"m"_bytes});
  EXPECT_EQ(client->hscanAll("h"_bytes), (std::vector{"f"_bytes, "1"_bytes, "g"_bytes, "2"_bytes}));
  EXPECT_EQ(client->zrangeAll("z"_bytes), (std::vector{"y"_bytes, "-1"_bytes, "x"_bytes, "2.5"_bytes}));

  EXPECT_EQ(client->keyTtl("l"_bytes).second, "-1");
  EXPECT_EQ(client->keyTtl("?"_bytes).second, "-2");
  EXPECT_TRUE(client->deleteKey("s"_bytes));
  EXPECT_TRUE(client->deleteKey("s"_bytes));
  EXPECT_EQ(alerts(), Messages{});

  EXPECT_EQ(client->getValue("l"_bytes), std::pair(false, Bytes()));
  EXPECT_EQ(client->zrangeAll("l"_bytes), std::vector<Bytes>());
  EXPECT_FALSE(client->selectDb(4));
  EXPECT_EQ(client->currentDbIdx(), 3);
  EXPECT_EQ(alerts().size(), 3U);
}

TEST_F(ServerCommandsTest, SendWhatIsStated) {
  const Bytes k("k"_bytes);
  // clang-format off
  const std::vector<std::pair<std::function<bool(ServerItem&)>, std::string>> cases{
      {[&](ServerItem& s) { return s.setValue(k, "v"_bytes, -1); }, "persist k|set k v"},
      {[&](ServerItem& s) { return s.setValue(k, "v"_bytes, 0); }, "set k v EX 0"},
      {[&](ServerItem& s) { return s.addSetMembers(k, {"m"_bytes}, -1); }, "sadd k m"},
      {[&](ServerItem& s) { return s.addSetMembers(k, {"m"_bytes}, 60); }, "sadd k m|expire k 60"},
      {[&](ServerItem& s) { return s.pushListItems(k, std::vector{"a"_bytes, "b"_bytes}, 0); },
       "rpush k a b|expire k 0"},
      // What has no partner isn't sent.
      {[&](ServerItem& s) { return s.setHashFields(k, std::vector{"f"_bytes, "g"_bytes}, {"1"_bytes}, -1); },
       "hmset k f 1"},
      {[&](ServerItem& s) { return s.setHashFields(k, {}, {"1"_bytes}, -1); }, "hmset k"},
      {[&](ServerItem& s) { return s.addSortedSetMembers(k, {"1.5"}, std::vector{"m"_bytes, "n"_bytes}, 9); },
       "zadd k 1.5 m|expire k 9"},
  };
  // clang-format on
  for (const auto& [call, sent] : cases) {
    ScriptedServer peer(answeringAll([](int) { return "+OK\r\n"; }));
    EXPECT_TRUE(call(*connectedItem(peer.port())));
    EXPECT_EQ(peer.received().front(), requests(sent));
  }
}

TEST_F(ServerCommandsTest, ShowOneAlertForEachFailureAndSendNothingMore) {
  ScriptedServer peer(answering({"-ERR first\r\n", ":1\r\n", "-ERR second\r\n", "*0\r\n", "+none\r\n", "_\r\n"}));
  const auto client = connectedItem(peer.port());
  EXPECT_FALSE(client->setValue("k"_bytes, "v"_bytes, -1));
  EXPECT_EQ(alerts(), Messages{"ERR first"});
  EXPECT_FALSE(client->addSetMembers("k"_bytes, {"m"_bytes}, 5));
  EXPECT_EQ(alerts(), Messages{"ERR second"});
  EXPECT_EQ(client->keyType("k"_bytes), std::pair(false, std::string()));
  EXPECT_EQ(alerts(), Messages{"Server reply: Error"});
  EXPECT_EQ(client->keyTtl("k"_bytes), (std::pair<bool, std::optional<std::string>>(true, std::nullopt)));
  EXPECT_EQ(client->getValue("k"_bytes), std::pair(true, Bytes()));
  EXPECT_EQ(alerts(), Messages{});
}

TEST_F(ServerCommandsTest, ScanAWholeServerUpToTheLimit) {
  RedisServer server({"--enable-debug-command", "yes"});
  server.command({"DEBUG", "POPULATE", "5000"});
  server.command({"SET", "\xFF\0x"s, "v"});
  const auto client = connectedItem(server.port());
  auto all = client->scanKeys("*"_bytes, noLimit, false);
  std::sort(all.begin(), all.end());
  EXPECT_EQ(all.size(), 5001U);
  EXPECT_EQ(std::unique(all.begin(), all.end()), all.end());
  EXPECT_EQ(client->scanKeys("\xFF*"_bytes, noLimit, false), std::vector{"\xFF\0x"_bytes});
  EXPECT_EQ(client->scanKeys("key:*"_bytes, 1234, false).size(), 1234U);
  EXPECT_TRUE(client->scanKeys("*"_bytes, 0, false).empty());
  EXPECT_EQ(alerts(), Messages{});
}

// What a scan gives twice, while a set or hash is rehashed, stands twice: the rows are what the server said.
TEST_F(ServerCommandsTest, FollowTheCursorAndStopAtTheLimit) {
  ScriptedServer peer(
      answering({noCluster, scanReply("17", {}), scanReply("99", {"a", "b"}), scanReply("0", {"c"}), noCluster,
                 scanReply("5", {"a", "b"}), scanReply("7", {"a", "b"}), scanReply("0", {"b", "c"}),
                 scanReply("7", {"f", "1"}), scanReply("0", {"f", "1", "g", "2"})}));
  const auto client = connectedItem(peer.port());
  EXPECT_EQ(client->scanKeys("p"_bytes, 100, false), (std::vector{"a"_bytes, "b"_bytes, "c"_bytes}));
  EXPECT_EQ(client->scanKeys("p"_bytes, 2, false), (std::vector{"a"_bytes, "b"_bytes}));
  EXPECT_EQ(client->sscanAll("k"_bytes), (std::vector{"a"_bytes, "b"_bytes, "b"_bytes, "c"_bytes}));
  EXPECT_EQ(client->hscanAll("k"_bytes),
            (std::vector{"f"_bytes, "1"_bytes, "f"_bytes, "1"_bytes, "g"_bytes, "2"_bytes}));
  EXPECT_EQ(peer.received().front(),
            requests("cluster nodes|scan 0 MATCH p COUNT 1000|scan 17 MATCH p COUNT 1000|scan 99 MATCH p COUNT 1000|"
                     "cluster nodes|scan 0 MATCH p COUNT 1000|sscan k 0 COUNT 1000|sscan k 7 COUNT 1000|"
                     "hscan k 0 COUNT 1000|hscan k 7 COUNT 1000"));
}

TEST_F(ServerCommandsTest, DropWhatTheyFoundWhenACommandOrCursorFails) {
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

}  // namespace
}  // namespace tarn::test
