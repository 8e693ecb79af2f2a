#include "tests/wire/WireTest.h"

namespace tarn::test {
namespace {

class Discovery : public WireTest {
protected:
  static std::vector<std::string> counts(const ServerItem& server) {
    std::vector<std::string> texts;
    for (const auto& db : *server.dbs())
      texts.push_back(db->dbName() + db->keysCount());
    return texts;
  }
};

TEST_F(Discovery, CountsTheKeysOfAServerAndShowsThem) {
  RedisServer server({"--databases", "3"});
  server.command({"MSET", "a", "1", "b", "2"});
  server.command({"SET", "c", "3"}, 2);
  const auto client = connectedItem(server.port());
  client->loadDatabases();
  EXPECT_EQ(counts(*client), (Messages{"db0(0)", "db1(0)", "db2(0)"}));
  EXPECT_EQ(client->dbs()->at(2)->dbIdx(), 2);
  EXPECT_EQ(client->dbs()->at(2)->parent(), client);

  client->infoFromServerMain();
  waitUntilIdle(*client);
  EXPECT_EQ(counts(*client), (Messages{"db0(2)", "db1(0)", "db2(1)"}));
  EXPECT_EQ(alerts(), Messages{});
  EXPECT_EQ(host_.calls, Messages{"counts"});

  server.command({"FLUSHALL"});
  client->infoFromServerMain();
  waitUntilIdle(*client);
  EXPECT_EQ(counts(*client), (Messages{"db0(0)", "db1(0)", "db2(0)"}));
  client->closeConnection();
  EXPECT_TRUE(client->dbs()->empty());
}

TEST_F(Discovery, AddsUpTheMastersOfAClusterAndLeavesOutADeadOne) {
  RedisCluster cluster;
  const auto client = connectedItem(cluster.master(0).port());
  client->loadDatabases();
  for (int i = 0; i < 21; ++i)
    client->setValue(Bytes("key" + std::to_string(i)), "v"_bytes, -1);
  const auto refresh = [&] {
    client->infoFromServerMain();
    waitUntilIdle(*client);
    return client->dbs()->front()->keysCount();
  };
  EXPECT_EQ(refresh(), "(21)");
  const std::string alive = cluster.master(2).command({"DBSIZE"});
  cluster.master(2).kill();
  EXPECT_EQ(refresh(), "(" + std::to_string(21 - std::stoi(alive.substr(1))) + ")");
  EXPECT_EQ(alerts(), Messages{});
}

TEST_F(Discovery, StandsBackWhileTheQueueHasOtherWork) {
  ScriptedServer peer(answering({}));
  const auto client = connectedItem(peer.port());
  std::atomic<bool> done = false;
  client->operationQueue().addOperationWithBlock([&] { waitUntil([&] { return done.load(); }); });
  client->infoFromServerMain();
  waitUntil([&] { return client->operationQueue().operationCount() == 1; });
  done = true;
  waitUntilIdle(*client);
  client->closeConnection();
  waitUntil([&] { return peer.connections() == 1; });
  EXPECT_EQ(peer.received().front(), "");
}

TEST_F(Discovery, TellsADatabaseCountThatCannotBeRead) {
  const auto count = [](const std::string& text) { return "*2\r\n" + bulk("databases") + bulk(text); };
  const std::string prefix = "Can not cover database count string to Int(";
  const std::string notANumber = prefix + "933)";
  const std::vector<std::pair<std::string, std::string>> cases{
      {"-ERR unknown command\r\n", "ERR unknown command"},
      {"+OK\r\n", prefix + "907)"},
      {"*0\r\n", prefix + "915)"},
      {"%1\r\n+databases\r\n:16\r\n", prefix + "915)"},
      {count("1\xFF"), prefix + "940)"},
      {count(""), notANumber},
      {count("abc"), notANumber},
      {count("-1"), notANumber},
      {count("1000001"), notANumber},
      {count("99999999999999999999"), notANumber},
  };
  for (const auto& [reply, message] : cases) {
    SCOPED_TRACE(reply);
    ScriptedServer peer(answering({count("2"), reply}));
    const auto client = connectedItem(peer.port());
    client->loadDatabases();
    client->loadDatabases();
    EXPECT_EQ(client->dbs()->size(), 2U);
    EXPECT_EQ(alerts(), Messages{message});
    const std::string request = "*3\r\n$6\r\nconfig\r\n$3\r\nget\r\n$9\r\ndatabases\r\n";
    EXPECT_EQ(peer.received().front(), request + request);
  }
}

TEST_F(Discovery, TakesTheCountsFromInfoAsTheyStand) {
  const std::vector<std::pair<std::string, Messages>> cases{
      {bulk("# Keyspace\r\ndb1:keys=7,expires=1\r\ndb20:keys=1,x\r\n# Other\r\na:b\r\n"), {"db0(0)", "db1(7)"}},
      {bulk("# Keyspace\r\n"), {"db0(0)", "db1(0)"}},
      {bulk("# Keyspace\r\ndb0:keys=1,\xFF"), {"db0(0)", "db1(0)"}},
      {"-ERR no\r\n", {"db0(5)", "db1(0)"}},
  };
  for (const auto& [info, expected] : cases) {
    SCOPED_TRACE(info);
    ScriptedServer peer(answering({noCluster, info}));
    const auto client = connectedItem(peer.port());
    client->setDbs({std::make_shared<DbItem>(0, client), std::make_shared<DbItem>(1, client)});
    client->dbs()->front()->setKeysCount("(5)");
    client->infoFromServerMain();
    waitUntilIdle(*client);
    EXPECT_EQ(counts(*client), expected);
    EXPECT_EQ(alerts(), Messages{});
  }
}

}  // namespace
}  // namespace tarn::test
