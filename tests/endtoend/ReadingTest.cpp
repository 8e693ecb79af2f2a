#include "tests/endtoend/Desk.h"
#include "tests/support/RedisServer.h"
#include "tests/support/RespClient.h"
#include "tests/support/widgets/Hand.h"

#include <string>

namespace tarn::test {

namespace {

using std::string_literals::operator""s;

class Reading : public Desk {
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
  storeFavourite("lake", redis.port());
  openWindow();
  EXPECT_EQ(treeRows(), (Texts{"My Favourite", "lake"}));
  picture("endtoend-01-start");

  // Expand and wait for the counts.
  clickTriangle("lake");
  const Texts counted = {"My Favourite", "lake", "db0(10)", "db1(0)", "db2(2)", "db3(0)"};
  ASSERT_TRUE(waitUntil([&] { return treeRows() == counted; })) << testing::PrintToString(treeRows());
  EXPECT_FALSE(hasTab());
  picture("endtoend-02-databases");

  // Click a database.
  clickTreeRow("db0(10)");
  ASSERT_TRUE(hasTab());
  const Texts all = {"\\B/wFrZXk=", "hash", "list", "set", "stream", "superuser", "text", "user:1", "user:12", "zset"};
  ASSERT_TRUE(lists(all));
  EXPECT_EQ(tab().labServerName.stringValue(), "Name:lake Server:127.0.0.1 Port:" + std::to_string(redis.port()));
  EXPECT_EQ(tab().labStatus.stringValue(), "Status:Connected");
  EXPECT_EQ(tab().labKey.stringValue(), "Key(utf8):");
  EXPECT_EQ(tab().popDatabase.titleOfSelectedItem(), "db0");
  EXPECT_EQ(itemCount(tab().popDatabase), 4);
  EXPECT_EQ(tab().tableKeys.tableColumn(0).headerToolTip(), "Count Shown:10");
  EXPECT_EQ(tab().labKeySize.stringValue(), "Key Size:");
  EXPECT_EQ(tab().labDataSize.stringValue(), "Data Size:");
  picture("endtoend-03-keys");

  // Search.
  searchFor("user");
  ASSERT_TRUE(lists({"superuser", "user:1", "user:12"}));
  EXPECT_EQ(tab().tableKeys.tableColumn(0).headerToolTip(), "Count Shown:3");
  searchFor("u*r:1");
  ASSERT_TRUE(lists({"user:1", "user:12"}));
  click(tab().chkExactly);
  ASSERT_TRUE(lists({"user:1"}));
  searchFor("\\B/w==*key");
  ASSERT_TRUE(lists({"\\B/wFrZXk="}));
  picture("endtoend-04-search");
  click(tab().btnSearchKeyClear);
  click(tab().chkExactly);
  ASSERT_TRUE(lists(all));

  // A key of each type.
  ASSERT_NO_FATAL_FAILURE(readKey("text", "Data Size: 22byte(s)"));
  EXPECT_GT(std::stoi(tab().txtTTL.stringValue()), 4000);
  expectKey("text", "String", tab().txtTTL.stringValue(), "Second(s)", 4);
  EXPECT_EQ(tab().valueDataStringTxtView.string(),
            "Gr\xC3\xBC\xC3\x9F"
            "e\nfrom two lines");
  picture("endtoend-05-string");

  ASSERT_NO_FATAL_FAILURE(readKey("list", "Data Size: 13byte(s) Data Count:3"));
  expectKey("list", "List", "-1", "(Persist)", 4);
  EXPECT_EQ(column(tab().valueDataSetTable), (Texts{"first", "second", "\\B//4="}));
  EXPECT_TRUE(tab().valueDataStringScrollView.isHidden());
  clickRow(tab().valueDataSetTable, "second");
  EXPECT_EQ(tab().setValueTextView.string(), "second");
  picture("endtoend-06-list");

  ASSERT_NO_FATAL_FAILURE(readKey("set", "Data Size: 4byte(s) Data Count:1"));
  expectKey("set", "Set", "-1", "(Persist)", 3);
  EXPECT_EQ(column(tab().valueDataSetTable), Texts{"only"});
  EXPECT_EQ(tab().setValueTextView.string(), "");
  picture("endtoend-07-set");

  ASSERT_NO_FATAL_FAILURE(readKey("hash", "Data Size: 24byte(s) Data Count:3"));
  expectKey("hash", "Hash", "-1", "(Persist)", 4);
  EXPECT_EQ(column(tab().valueDataHashTable, 0), (Texts{"name", "city", "\\Byv4="}));
  EXPECT_EQ(column(tab().valueDataHashTable, 1), (Texts{"Ada", "London", "bytes"}));
  clickRow(tab().valueDataHashTable, "city");
  EXPECT_EQ(tab().hashKeyTextView.string(), "city");
  EXPECT_EQ(tab().hashValueTextView.string(), "London");
  picture("endtoend-08-hash");
  useDarkPalette(true);
  picture("endtoend-08-hash-dark");
  useDarkPalette(false);

  ASSERT_NO_FATAL_FAILURE(readKey("zset", "Data Size: 23byte(s) Data Count:6"));
  expectKey("zset", "SortedSet", "-1", "(Persist)", 4);
  EXPECT_EQ(column(tab().valueDataSortedSetTable, 1), (Texts{"-3", "1.5", "1e+21"}));
  EXPECT_EQ(column(tab().valueDataSortedSetTable, 0), (Texts{"lowest", "low", "high"}));
  picture("endtoend-09-sorted-set");

  ASSERT_NO_FATAL_FAILURE(readKey("\\B/wFrZXk=", "Data Size: 21byte(s)"));
  expectKey("\\B/wFrZXk=", "String", "-1", "(Persist)", 5);

  clickRow(tab().tableKeys, "stream");
  ASSERT_TRUE(becomes(tab().labType, "Type:stream (Unsupported Type)"));
  ASSERT_TRUE(waitUntil([&] { return !alerts.shown().empty(); }));
  EXPECT_EQ(alerts.messages(), Texts{"No Data found on the Server for the key 'stream'."});
  alerts.clear();

  // Another database, another character set.
  chooseTitle(tab().popDatabase, "db2");
  ASSERT_TRUE(lists({"\\BvPzD+w==", "plain"}));
  chooseTitle(tab().popKeyDataCharset, "GBK");
  ASSERT_TRUE(lists({"plain", "\xE9\x94\xAE\xE5\x90\x8D"}));
  EXPECT_EQ(tab().labKey.stringValue(), "Key(GBK):");
  chooseTitle(tab().popValueDataCharset, "GBK");
  ASSERT_NO_FATAL_FAILURE(readKey("\xE9\x94\xAE\xE5\x90\x8D", "Data Size: 4byte(s)"));
  expectKey("\xE9\x94\xAE\xE5\x90\x8D", "String", "-1", "(Persist)", 4);
  EXPECT_EQ(tab().valueDataStringTxtView.string(), "\xE4\xBD\xA0\xE5\xA5\xBD");
  picture("endtoend-10-charset");

  // Reload shows what is there now.
  redis.command({"SET", "plain", "changed behind our back"}, 2);
  clickRow(tab().tableKeys, "plain");
  ASSERT_TRUE(becomes(tab().labDataSize, "Data Size: 23byte(s)"));
  redis.command({"SET", "plain", "and again"}, 2);
  click(tab().btnReload);
  ASSERT_TRUE(becomes(tab().labDataSize, "Data Size: 9byte(s)"));
  EXPECT_EQ(tab().valueDataStringTxtView.string(), "and again");

  // Lose the server, and come back to the same database.
  redis.kill();
  click(tab().btnReload);
  ASSERT_TRUE(becomes(tab().labStatus, "Status:DisConnected"));
  ASSERT_TRUE(waitUntil([&] { return !alerts.shown().empty(); }));
  EXPECT_EQ(alerts.shown().size(), 1U) << testing::PrintToString(alerts.messages());
  EXPECT_EQ(tab().labType.stringValue(), "Type:");
  EXPECT_EQ(tab().txtTTL.toolTip(), "(DisConnected)");
  alerts.clear();
  picture("endtoend-11-lost");
  redis.start();
  fill(redis);
  click(tab().btnReconnect);
  ASSERT_TRUE(becomes(tab().labStatus, "Status:Connected"));
  ASSERT_TRUE(waitUntil([&] { return tab().popDatabase.titleOfSelectedItem() == "db2"; }));
  searchFor("plain");
  ASSERT_TRUE(lists({"plain"}));
  ASSERT_NO_FATAL_FAILURE(readKey("plain", "Data Size: 5byte(s)"));
  EXPECT_EQ(alerts.messages(), Texts{});
  picture("endtoend-12-reconnected");

  // Close the tab.
  click(tab().btnClose);
  ASSERT_TRUE(waitUntil([&] { return !hasTab(); }));
  EXPECT_TRUE(window().outlets().mainTab.tabViewItems().empty());
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::notConnected);
  EXPECT_EQ(treeRows(), (Texts{"My Favourite", "lake"}));
  picture("endtoend-13-closed");
}

TEST_F(Reading, AClusterIsSearchedAndReadAsOneServer) {
  RedisCluster cluster;
  Texts keys;
  for (int i = 100; i < 200; ++i) {
    keys.push_back("key:" + std::to_string(i));
    // Whoever owns the slot takes it.
    for (int node = 0; node < 3; ++node)
      cluster.master(node).command({"HSET", keys.back(), "of", keys.back()});
  }
  storeFavourite("three masters", cluster.master(0).port());
  openWindow();
  clickTriangle("three masters");
  ASSERT_TRUE(waitUntil([&] { return treeRows().size() > 2; }));
  clickTreeRow(treeRows()[2]);
  ASSERT_TRUE(lists(keys));
  for (const char* key : {"key:100", "key:123", "key:150", "key:177", "key:199"}) {
    ASSERT_NO_FATAL_FAILURE(readKey(key, "Data Size: 9byte(s) Data Count:1"));
    ASSERT_TRUE(waitUntil([&] { return column(tab().valueDataHashTable, 1) == Texts{key}; })) << key;
    expectKey(key, "Hash", "-1", "(Persist)", 7);
  }
  picture("endtoend-20-cluster");
}

TEST_F(Reading, ASecondFavouriteWithAPasswordHasATabOfItsOwn) {
  RedisServer open;
  RedisServer guarded({"--requirepass", "secret"});
  open.command({"SET", "here", "1"});
  guarded.command({"SET", "there", "2"});
  storeFavourite("guarded", guarded.port(), "secret");
  storeFavourite("open", open.port());
  openWindow();
  for (const char* name : {"open", "guarded"}) {
    clickTriangle(name);
    clickTreeRow(name);
  }
  for (std::size_t place : {0U, 1U}) {
    ASSERT_TRUE(waitUntil([&] { return server(place)->connectionStatus() == ConnectionStatus::connected; }));
  }
  EXPECT_EQ(window().outlets().mainTab.tabViewItems().size(), 2U);
  EXPECT_EQ(window().outlets().mainTab.selectedTabViewItem()->label(), "guarded");
  ASSERT_TRUE(becomes(tab().labStatus, "Status:Connected"));
  searchFor("");
  ASSERT_TRUE(lists({"there"}));
  EXPECT_EQ(alerts.messages(), Texts{});
  picture("endtoend-30-two-tabs");
}

}  // namespace tarn::test
