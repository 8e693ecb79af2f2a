#include "tests/support/RedisServer.h"
#include "tests/support/RespPeer.h"
#include "tests/support/program/ProgramTest.h"

#include <string>

namespace tarn::test {

namespace {

using std::string_literals::operator""s;

class Reading : public ProgramTest {
protected:
  static void fill(const RedisServer& redis) {
    RespClient client(redis.port());
    client.pipeline({{"SET", "text",
                      "Gr\xC3\xBC\xC3\x9F"
                      "e\nfrom two lines",
                      "EX", "5000"},
                     {"RPUSH", "list", "first", "second", "\xFF\xFE"},
                     {"SADD", "set", "only"},
                     {"HSET", "hash", "name", "Ada", "city", "London", "\xCA\xFE", "bytes"},
                     {"ZADD", "zset", "1.5", "low", "1e21", "high", "-3", "lowest"},
                     {"XADD", "stream", "*", "field", "value"},
                     {"SET", "\xFF\x01key", "a key that is no text"},
                     {"SET", "user:1", "one"},
                     {"SET", "user:12", "twelve"},
                     {"SET", "superuser", "root"},
                     {"SELECT", "2"},
                     // The GBK bytes of two Chinese words.
                     {"SET", "\xBC\xFC\xC3\xFB", "\xC4\xE3\xBA\xC3"},
                     {"SET", "plain", "ASCII"}});
  }

  // What a load leaves around every value.
  void expectKey(const std::string& key, const std::string& type, const std::string& ttl, const std::string& ttlToolTip,
                 int keySize) {
    EXPECT_EQ(tab().txtKey.stringValue(), key);
    EXPECT_EQ(tab().labType.stringValue(), "Type: " + type);
    EXPECT_EQ(tab().txtTTL.stringValue(), ttl);
    EXPECT_EQ(tab().txtTTL.toolTip(), ttlToolTip);
    EXPECT_EQ(tab().labKeySize.stringValue(), "Key Size: " + std::to_string(keySize) + "byte(s)");
    EXPECT_TRUE(tab().labDealingQueue.stringValue().starts_with("Dealing Queue:"));
    EXPECT_EQ(alerts.messages(), Texts{});
  }
};

}  // namespace

TEST_F(Reading, TheWholeRoadFromAFavouriteToValuesAndBack) {
  RedisServer redis({"--databases", "4"});
  fill(redis);
  store("lake", redis.port());
  openWindow();
  EXPECT_EQ(rows(), (Texts{"My Favourite", "lake"}));

  // Expand and wait for the counts.
  clickTriangle("lake");
  const Texts counted = {"My Favourite", "lake", "db0(10)", "db1(0)", "db2(2)", "db3(0)"};
  ASSERT_TRUE(waitUntil([&] { return rows() == counted; })) << testing::PrintToString(rows());
  EXPECT_FALSE(tabOf());

  // Click a database.
  clickRow("db0(10)");
  ASSERT_TRUE(tabOf());
  const Texts all = {"\\B/wFrZXk=", "hash", "list", "set", "stream", "superuser", "text", "user:1", "user:12", "zset"};
  waitForKeys(all);
  EXPECT_EQ(tab().labServerName.stringValue(), "Name:lake Server:127.0.0.1 Port:" + std::to_string(redis.port()));
  EXPECT_EQ(tab().labStatus.stringValue(), "Status:Connected");
  EXPECT_EQ(tab().labKey.stringValue(), "Key(utf8):");
  EXPECT_EQ(tab().popDatabase.titleOfSelectedItem(), "db0");
  EXPECT_EQ(itemCount(tab().popDatabase), 4);
  EXPECT_EQ(tab().tableKeys.tableColumn(0).headerToolTip(), "Count Shown:10");
  EXPECT_EQ(tab().labKeySize.stringValue(), "Key Size:");
  EXPECT_EQ(tab().labDataSize.stringValue(), "Data Size:");

  // Search.
  searchFor("user");
  waitForKeys({"superuser", "user:1", "user:12"});
  EXPECT_EQ(tab().tableKeys.tableColumn(0).headerToolTip(), "Count Shown:3");
  searchFor("u*r:1");
  waitForKeys({"user:1", "user:12"});
  click(tab().chkExactly);
  waitForKeys({"user:1"});
  searchFor("\\B/w==*key");
  waitForKeys({"\\B/wFrZXk="});
  click(tab().btnSearchKeyClear);
  click(tab().chkExactly);
  waitForKeys(all);

  // A key of each type.
  readKey("text", "Data Size: 22byte(s)");
  EXPECT_GT(std::stoi(tab().txtTTL.stringValue()), 4000);
  expectKey("text", "String", tab().txtTTL.stringValue(), "Second(s)", 4);
  EXPECT_EQ(tab().valueDataStringTxtView.string(),
            "Gr\xC3\xBC\xC3\x9F"
            "e\nfrom two lines");

  readKey("list", "Data Size: 13byte(s) Data Count:3");
  expectKey("list", "List", "-1", "(Persist)", 4);
  EXPECT_EQ(texts(tab().valueDataSetTable), (Texts{"first", "second", "\\B//4="}));
  EXPECT_TRUE(tab().valueDataStringScrollView.isHidden());
  clickRow(tab().valueDataSetTable, "second");
  EXPECT_EQ(tab().setValueTextView.string(), "second");

  readKey("set", "Data Size: 4byte(s) Data Count:1");
  expectKey("set", "Set", "-1", "(Persist)", 3);
  EXPECT_EQ(texts(tab().valueDataSetTable), Texts{"only"});
  EXPECT_EQ(tab().setValueTextView.string(), "");

  readKey("hash", "Data Size: 24byte(s) Data Count:3");
  expectKey("hash", "Hash", "-1", "(Persist)", 4);
  EXPECT_EQ(texts(tab().valueDataHashTable, 0), (Texts{"name", "city", "\\Byv4="}));
  EXPECT_EQ(texts(tab().valueDataHashTable, 1), (Texts{"Ada", "London", "bytes"}));
  clickRow(tab().valueDataHashTable, "city");
  EXPECT_EQ(tab().hashKeyTextView.string(), "city");
  EXPECT_EQ(tab().hashValueTextView.string(), "London");
  useDarkPalette(true);
  useDarkPalette(false);

  readKey("zset", "Data Size: 23byte(s) Data Count:6");
  expectKey("zset", "SortedSet", "-1", "(Persist)", 4);
  EXPECT_EQ(texts(tab().valueDataSortedSetTable, 1), (Texts{"-3", "1.5", "1e+21"}));
  EXPECT_EQ(texts(tab().valueDataSortedSetTable, 0), (Texts{"lowest", "low", "high"}));

  readKey("\\B/wFrZXk=", "Data Size: 21byte(s)");
  expectKey("\\B/wFrZXk=", "String", "-1", "(Persist)", 5);

  clickRow(tab().tableKeys, "stream");
  waitForText(tab().labType, "Type:stream (Unsupported Type)");
  ASSERT_TRUE(waitUntil([&] { return !alerts.shown().empty(); }));
  EXPECT_EQ(alerts.messages(), Texts{"No Data found on the Server for the key 'stream'."});
  alerts.clear();

  // Another database, another character set.
  choose(tab().popDatabase, "db2");
  waitForKeys({"\\BvPzD+w==", "plain"});
  choose(tab().popKeyDataCharset, "GBK");
  waitForKeys({"plain", "\xE9\x94\xAE\xE5\x90\x8D"});
  EXPECT_EQ(tab().labKey.stringValue(), "Key(GBK):");
  choose(tab().popValueDataCharset, "GBK");
  readKey("\xE9\x94\xAE\xE5\x90\x8D", "Data Size: 4byte(s)");
  expectKey("\xE9\x94\xAE\xE5\x90\x8D", "String", "-1", "(Persist)", 4);
  EXPECT_EQ(tab().valueDataStringTxtView.string(), "\xE4\xBD\xA0\xE5\xA5\xBD");

  // Reload shows what is there now.
  redis.command({"SET", "plain", "changed behind our back"}, 2);
  clickRow(tab().tableKeys, "plain");
  waitForText(tab().labDataSize, "Data Size: 23byte(s)");
  redis.command({"SET", "plain", "and again"}, 2);
  click(tab().btnReload);
  waitForText(tab().labDataSize, "Data Size: 9byte(s)");
  EXPECT_EQ(tab().valueDataStringTxtView.string(), "and again");

  // Lose the server, and come back to the same database.
  redis.kill();
  click(tab().btnReload);
  waitForText(tab().labStatus, "Status:DisConnected");
  ASSERT_TRUE(waitUntil([&] { return !alerts.shown().empty(); }));
  EXPECT_EQ(alerts.shown().size(), 1U) << testing::PrintToString(alerts.messages());
  EXPECT_EQ(tab().labType.stringValue(), "Type:");
  EXPECT_EQ(tab().txtTTL.toolTip(), "(DisConnected)");
  alerts.clear();
  redis.start();
  fill(redis);
  click(tab().btnReconnect);
  waitForText(tab().labStatus, "Status:Connected");
  ASSERT_TRUE(waitUntil([&] { return tab().popDatabase.titleOfSelectedItem() == "db2"; }));
  searchFor("plain");
  waitForKeys({"plain"});
  readKey("plain", "Data Size: 5byte(s)");
  EXPECT_EQ(alerts.messages(), Texts{});

  // Close the tab.
  click(tab().btnClose);
  ASSERT_TRUE(waitUntil([&] { return !tabOf(); }));
  EXPECT_TRUE(window().mainTab.tabViewItems().empty());
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::notConnected);
  EXPECT_EQ(rows(), (Texts{"My Favourite", "lake"}));
}

TEST_F(Reading, AClusterIsSearchedReadAndSavedToAsOneServer) {
  RedisCluster cluster;
  Texts keys;
  for (int i = 100; i < 200; ++i) {
    keys.push_back("key:" + std::to_string(i));
    // Whoever owns the slot takes it.
    for (int node = 0; node < 3; ++node)
      cluster.master(node).command({"HSET", keys.back(), "of", keys.back()});
  }
  store("three masters", cluster.master(0).port());
  openWindow();
  openDatabase("three masters", "db0(");
  waitForKeys(keys);
  int savedElsewhere = 0;
  for (const char* key : {"key:100", "key:123", "key:150", "key:177", "key:199"}) {
    readKey(key, "Data Size: 9byte(s) Data Count:1");
    EXPECT_EQ(texts(tab().valueDataHashTable, 1), Texts{key});
    expectKey(key, "Hash", "-1", "(Persist)", 7);

    // The key's own node takes the new value, and its time to live.
    typeInCell(tab().valueDataHashTable, key, 1, "saved");
    press(Qt::Key_Return);
    retype(tab().txtTTL, "5000");
    save();
    int owners = 0;
    for (int node = 0; node < 3; ++node) {
      if (cluster.master(node).command({"HGETALL", key}) != encodedRequest({"of", "saved"})) continue;
      EXPECT_TRUE(cluster.master(node).command({"TTL", key}).starts_with(":"));
      EXPECT_NE(cluster.master(node).command({"TTL", key}), ":-1\r\n");
      ++owners;
      savedElsewhere += node > 0 ? 1 : 0;
    }
    EXPECT_EQ(owners, 1) << key;
  }
  EXPECT_GT(savedElsewhere, 0);
}

TEST_F(Reading, ASecondFavouriteWithAPasswordHasATabOfItsOwn) {
  RedisServer open;
  RedisServer guarded({"--requirepass", "secret"});
  open.command({"SET", "here", "1"});
  guarded.command({"SET", "there", "2"});
  store("guarded", guarded.port(), "secret");
  store("open", open.port());
  openWindow();
  for (const char* name : {"open", "guarded"}) {
    clickTriangle(name);
    clickRow(name);
  }
  for (std::size_t index : {0U, 1U}) {
    ASSERT_TRUE(waitUntil([&] { return server(index)->connectionStatus() == ConnectionStatus::connected; }));
  }
  EXPECT_EQ(tabLabels(), (Texts{"open", "guarded"}));
  EXPECT_EQ(window().mainTab.selectedTabViewItem()->label(), "guarded");
  waitForText(tab().labStatus, "Status:Connected");
  searchFor("");
  waitForKeys({"there"});
  EXPECT_EQ(alerts.messages(), Texts{});
}

}  // namespace tarn::test
