#include "tests/wire/WireTest.h"

namespace tarn::test {
namespace {

class Commands : public WireTest {
protected:
  // What `call` sends to a peer that says OK to everything, its requests with bars between.
  static std::string sent(const std::function<bool(ServerItem&)>& call) {
    std::string words;
    ScriptedServer peer([&](ScriptedServer::Peer& client, int) {
      for (auto request = client.readRequest(); !request.empty(); request = client.readRequest()) {
        if (!words.empty()) words += "| ";
        for (const std::string& word : request)
          words += word + " ";
        client.send("+OK\r\n");
      }
    });
    EXPECT_TRUE(call(*connectedItem(peer.port())));
    return words;
  }
};

TEST_F(Commands, WriteAndReadEachType) {
  RedisServer server;
  const auto client = connectedItem(server.port());
  EXPECT_TRUE(client->setValue("s"_bytes, "\0\xFF"_bytes, 100));
  EXPECT_TRUE(client->pushListItems("l"_bytes, {"b"_bytes, ""_bytes, "a"_bytes}, -1));
  EXPECT_TRUE(client->addSetMembers("u"_bytes, {"m"_bytes, "m"_bytes}, -1));
  EXPECT_TRUE(client->setHashFields("h"_bytes, {"f"_bytes, "g"_bytes}, {"1"_bytes, "2"_bytes}, -1));
  EXPECT_TRUE(client->addSortedSetMembers("z"_bytes, {"2.5", "-1"}, {"x"_bytes, "y"_bytes}, 50));

  const std::vector<std::pair<Bytes, std::string>> types{{"s"_bytes, "string"}, {"l"_bytes, "list"},
                                                         {"u"_bytes, "set"},    {"h"_bytes, "hash"},
                                                         {"z"_bytes, "zset"},   {"?"_bytes, "none"}};
  for (const auto& [key, type] : types)
    EXPECT_EQ(client->keyType(key), std::pair(true, type));

  EXPECT_EQ(client->getValue("s"_bytes), std::pair(true, "\0\xFF"_bytes));
  EXPECT_EQ(client->getValue("?"_bytes), std::pair(true, Bytes()));
  EXPECT_EQ(client->lrangeAll("l"_bytes), (std::vector{"b"_bytes, ""_bytes, "a"_bytes}));
  EXPECT_EQ(client->lrangeAll("?"_bytes), std::vector<Bytes>());
  EXPECT_EQ(client->sscanAll("u"_bytes), std::vector{"m"_bytes});
  EXPECT_EQ(client->hscanAll("h"_bytes), (std::vector{"f"_bytes, "1"_bytes, "g"_bytes, "2"_bytes}));
  EXPECT_EQ(client->zrangeAll("z"_bytes), (std::vector{"y"_bytes, "-1"_bytes, "x"_bytes, "2.5"_bytes}));

  EXPECT_EQ(client->keyTtl("l"_bytes).second, "-1");
  EXPECT_EQ(client->keyTtl("?"_bytes).second, "-2");
  EXPECT_NE(client->keyTtl("s"_bytes).second, "-1");
  EXPECT_TRUE(client->setValue("s"_bytes, "new"_bytes, -1));
  EXPECT_EQ(client->keyTtl("s"_bytes).second, "-1");
  EXPECT_TRUE(client->deleteKey("s"_bytes));
  EXPECT_TRUE(client->deleteKey("s"_bytes));
  EXPECT_EQ(alerts(), Messages{});
}

TEST_F(Commands, SendTheExpiryAsStated) {
  using Item = ServerItem;
  const Bytes k("k"_bytes);
  const std::vector<std::pair<std::function<bool(Item&)>, std::string>> cases{
      {[&](Item& s) { return s.setValue(k, "v"_bytes, -1); }, "persist k | set k v "},
      {[&](Item& s) { return s.setValue(k, "v"_bytes, 0); }, "set k v EX 0 "},
      {[&](Item& s) { return s.addSetMembers(k, {"m"_bytes}, -1); }, "sadd k m "},
      {[&](Item& s) { return s.addSetMembers(k, {"m"_bytes}, 60); }, "sadd k m | expire k 60 "},
      {[&](Item& s) {
         return s.pushListItems(k, {"a"_bytes, "b"_bytes}, 0);
       },
       "rpush k a b | expire k 0 "},
      // What has no partner isn't sent.
      {[&](Item& s) {
         return s.setHashFields(k, {"f"_bytes, "g"_bytes}, {"1"_bytes}, -1);
       },
       "hmset k f 1 "},
      {[&](Item& s) {
         return s.addSortedSetMembers(k, {"1.5"}, {"m"_bytes, "n"_bytes}, 9);
       },
       "zadd k 1.5 m | expire k 9 "},
  };
  for (const auto& [call, words] : cases)
    EXPECT_EQ(sent(call), words);
}

TEST_F(Commands, ShowOneAlertForEachFailureAndSendNothingMore) {
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

  RedisServer server;
  const auto real = connectedItem(server.port());
  EXPECT_FALSE(real->setHashFields("h"_bytes, {}, {"1"_bytes}, -1));
  EXPECT_TRUE(real->pushListItems("l"_bytes, {"a"_bytes}, -1));
  EXPECT_EQ(real->getValue("l"_bytes), std::pair(false, Bytes()));
  EXPECT_EQ(real->zrangeAll("l"_bytes), std::vector<Bytes>());
  EXPECT_EQ(alerts().size(), 3U);
}

TEST_F(Commands, SelectADatabaseForAsLongAsTheConnectionStands) {
  RedisServer server({"--databases", "4"});
  server.command({"SET", "k", "v"}, 3);
  const auto client = connectedItem(server.port());
  EXPECT_TRUE(client->selectDb(3));
  EXPECT_EQ(client->currentDbIdx(), 3);
  EXPECT_EQ(client->getValue("k"_bytes).second, "v"_bytes);
  EXPECT_FALSE(client->selectDb(4));
  EXPECT_EQ(client->currentDbIdx(), 3);
  EXPECT_EQ(alerts(), Messages{"ERR DB index is out of range"});
  client->closeConnection();
  EXPECT_TRUE(client->connectToServer().ok);
  EXPECT_EQ(client->currentDbIdx(), 0);
}

}  // namespace
}  // namespace tarn::test
