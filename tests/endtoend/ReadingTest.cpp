#include "tests/support/RedisServer.h"
#include "tests/support/RespPeer.h"
#include "tests/support/program/Program.h"

namespace tarn::test {

class Reading : public ProgramTest {
protected:
  static void fill(const RedisServer& redis) {
    RespClient(redis.port())
        .commands({{"SET", "text", "Grüße\nfrom two lines", "EX", "5000"},
                   {"RPUSH", "list", "first", "second", "\xFF\xFE"},
                   {"SADD", "set", "only"},
                   {"HSET", "hash", "name", "Ada", "city", "London", "\xCA\xFE", "bytes"},
                   {"ZADD", "zset", "1.5", "low", "1e21", "high", "-3", "lowest"},
                   {"SET", "\xFF\x01key", "a key that is no text"},
                   {"MSET", "user:1", "one", "user:12", "twelve"},
                   {"SELECT", "2"},
                   // The GBK bytes of two Chinese words.
                   {"MSET", "\xBC\xFC\xC3\xFB", "\xC4\xE3\xBA\xC3", "plain", "ASCII"}});
  }

  // Clicks the key and waits for its load; then what the form shows.
  std::string read(const std::string& key, const std::string& dataSize) {
    readKey(key, dataSize);
    OperationTabLayout& form = tab();
    const std::string& ttl = form.txtTTL.stringValue();
    std::string all = form.txtKey.stringValue() + ", " + form.labType.stringValue() + ", " +
                      (ttl == "-1" ? ttl : std::to_string(std::stoi(ttl) / 1000) + "...") + form.txtTTL.toolTip() +
                      ", " + form.labKeySize.stringValue() + ":";
    if (!form.valueDataStringScrollView.isHidden()) all += " " + form.valueDataStringTxtView.string();
    for (NSTableView* table : {&form.valueDataSetTable, &form.valueDataHashTable, &form.valueDataSortedSetTable}) {
      for (int column = 0; column < table->numberOfColumns() && table->widget()->isVisible(); ++column)
        for (const std::string& text : texts(*table, column))
          all += " " + text;
    }
    EXPECT_EQ(alerts.messages(), Texts{});
    return all;
  }
};

TEST_F(Reading, TheWholeRoadFromAFavouriteToValuesAndBack) {
  RedisServer redis({"--databases", "4"});
  fill(redis);
  open({{"lake", redis.port()}});
  see([&] { clickTriangle("lake"); }, "lake db0(8) db1(0) db2(2) db3(0)");
  clickRow("db0(8)");
  see("lake *db0(8) db1(0) db2(2) db3(0) | [lake] | Connected 4 db0 \\B/wFrZXk= hash list set text "
      "user:1 user:12 zset queue");
  EXPECT_EQ(tab().labServerName.stringValue(), "Name:lake Server:127.0.0.1 Port:" + std::to_string(redis.port()));
  // A search, and a key of each type.
  searchFor("u*r:1");
  waitForKeys({"user:1", "user:12"});
  click(tab().chkExactly);
  waitForKeys({"user:1"});
  searchFor("\\B/w==*key");
  waitForKeys({"\\B/wFrZXk="});
  click(tab().btnSearchKeyClear);
  click(tab().chkExactly);
  waitForKeys(8);
  // clang-format off
  const std::array<std::string, 3> values[] = {
      {"text", "22byte(s)", "String, 4...Second(s), Key Size: 4byte(s): Grüße\nfrom two lines"},
      {"list", "13byte(s) Data Count:3", "List, -1(Persist), Key Size: 4byte(s): first second \\B//4="},
      {"set", "4byte(s) Data Count:1", "Set, -1(Persist), Key Size: 3byte(s): only"},
      {"hash", "24byte(s) Data Count:3", "Hash, -1(Persist), Key Size: 4byte(s): name city \\Byv4= Ada London bytes"},
      {"zset", "23byte(s) Data Count:6", "SortedSet, -1(Persist), Key Size: 4byte(s): lowest low high -3 1.5 1e+21"},
      {"\\B/wFrZXk=", "21byte(s)", "String, -1(Persist), Key Size: 5byte(s): a key that is no text"}};
  // clang-format on
  for (const auto& [key, size, shown] : values) {
    EXPECT_EQ(read(key, "Data Size: " + size), key + ", Type: " + shown);
    useDarkPalette(key == "hash");
  }
  // Another database, another character set.
  choose(tab().popDatabase, "db2");
  waitForKeys({"\\BvPzD+w==", "plain"});
  choose(tab().popKeyDataCharset, "GBK");
  waitForKeys({"plain", "键名"});
  EXPECT_EQ(tab().labKey.stringValue(), "Key(GBK):");
  choose(tab().popValueDataCharset, "GBK");
  EXPECT_EQ(read("键名", "Data Size: 4byte(s)"), "键名, Type: String, -1(Persist), Key Size: 4byte(s): 你好");

  // Lose the server, and come back to the same database.
  redis.kill();
  click(tab().btnReload);
  const std::string lost = "db2(2) db3(0) | [lake] | DisConnected 4 db2 plain 键名 queue | ";
  EXPECT_TRUE(waitUntil([&] { return screen().find(lost) != std::string::npos; })) << screen();
  EXPECT_EQ(alerts.shown().size(), 1U);
  EXPECT_EQ(tab().txtTTL.toolTip(), "(DisConnected)");
  alerts.clear();
  redis.start();
  fill(redis);
  click(tab().btnReconnect);
  see("lake db0(8) db1(0) db2(2) db3(0) | [lake] | Connected 4 db2 plain 键名 queue");
  searchFor("plain");
  waitForKeys({"plain"});
  read("plain", "Data Size: 5byte(s)");

  // Close the tab.
  click(tab().btnClose);
  see("lake");
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::notConnected);
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
  open({{"three masters", cluster.master(0).port()}});
  openDatabase("three masters", "db0(");
  waitForKeys(keys);
  int savedElsewhere = 0;
  for (const std::string key : {"key:100", "key:123", "key:150", "key:177", "key:199"}) {
    EXPECT_EQ(read(key, "Data Size: 9byte(s) Data Count:1"),
              key + ", Type: Hash, -1(Persist), Key Size: 7byte(s): of " + key);
    // The key's own node takes the new value, and its time to live.
    typeInCell(tab().valueDataHashTable, key, 1, "saved");
    press(Qt::Key_Return);
    retype(tab().txtTTL, "5000");
    save();
    int owners = 0;
    for (int node = 0; node < 3; ++node) {
      if (cluster.master(node).command({"HGETALL", key}) != encodedRequest({"of", "saved"})) continue;
      EXPECT_GE(std::stoi(cluster.master(node).command({"TTL", key}).substr(1)), 4900);
      ++owners;
      savedElsewhere += node > 0 ? 1 : 0;
    }
    EXPECT_EQ(owners, 1) << key;
  }
  EXPECT_GT(savedElsewhere, 0);
}

// Tabs and windows go at every stage of the work under them, which runs on without a view to show it in.
TEST_F(Reading, ATabOrTheWindowGoesAwayAtAnyMoment) {
  const RedisServer redis;
  redis.command({"EVAL",
                 "for i = 1, 20000 do redis.call('HSET', 'key:hash', i, 'value') end "
                 "for i = 1, 3000 do redis.call('SET', 'key:' .. i, 'value') end",
                 "0"});
  open({{"lake", redis.port()}});
  // Connects, opens the first database and starts a search and a load of the large hash.
  const auto startWork = [&] {
    openDatabase("lake", "db0(");
    tab().txtSearchKey.setStringValue("key");
    click(tab().chkExactly);
    click(tab().chkExactly);
    tab().txtKey.setStringValue("key:hash");
    click(tab().btnReload);
  };
  for (int round = 0; round < 200; ++round) {
    startWork();
    for (int turn = 0; turn < round / 2 % 12; ++turn)
      settle();
    if (round % 2 == 0) {
      click(tab().btnClose);
      ASSERT_FALSE(tabOf());
    } else {
      dropWindow();
      settle();
      openWindow();
    }
  }
  // All of it still works.
  startWork();
  waitForText(tab().labStatus, "Status:Connected");
  EXPECT_TRUE(waitUntil([&] { return tab().valueDataHashTable.numberOfRows() == 20000; }));
}

}  // namespace tarn::test
