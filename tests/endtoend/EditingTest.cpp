#include "tests/support/RedisServer.h"
#include "tests/support/RespPeer.h"
#include "tests/support/program/Program.h"

#include <sstream>

namespace tarn::test {

constexpr int otherwise = 1001;
constexpr int cancel = 1002;

// A second client stands beside, and says what is on the server.
class Editing : public ProgramTest {
protected:
  Editing() {
    client.commands({{"SET", "text", "a text", "EX", "5000"},
                     {"RPUSH", "list", "first", "second", "third"},
                     {"SADD", "set", "1", "2", "3"},
                     {"HSET", "hash", "name", "Ada", "city", "London", "born", "1815"},
                     {"ZADD", "zset", "-3", "lowest", "1.5", "low", "1e21", "high"}});
    open({{"lake", redis.port()}});
    openDatabase("lake", "db0(");
    waitForKeys({"hash", "list", "set", "text", "zset"});
  }

  // The server's answer to a command, its words between commas.
  std::string said(const std::string& command) {
    std::istringstream words(command);
    std::istringstream lines(client.command({std::istream_iterator<std::string>(words), {}}));
    std::string all;
    for (std::string line; std::getline(lines, line, '\r'); lines.ignore())
      if (!line.starts_with('*') && !line.starts_with('$')) all += (all.empty() ? "" : ",") + line;
    return all;
  }

  RedisServer redis{{"--databases", "2"}};
  RespClient client{redis.port()};
};

TEST_F(Editing, SavesWhatIsTypedByMouseAndByKeyboard) {
  // A text, from the middle of which a line is typed over; its time to live becomes another.
  readKey("text", "Data Size: 6byte(s)");
  click(tab().valueDataStringTxtView);
  keys("Ctrl+Home Right Space 'longer Return");
  retype(tab().txtTTL, "-1");
  save({}, true);
  EXPECT_EQ(said("GET text"), "a longer\n text");
  EXPECT_EQ(said("TTL text"), ":-1");

  // A set by keyboard alone.
  readKey("set", "Data Size: 3byte(s) Data Count:3");
  tab().valueDataSetTable.widget()->setFocus(Qt::TabFocusReason);
  keys("Home F2 Ctrl+A 'one Return Down Return End '5 Tab Escape");
  save({}, true);
  EXPECT_EQ(said("SMISMEMBER set one 25 3 1 2"), ":1,:1,:1,:0,:0");

  // A hash: from field to value by Tab, and a save over a cell that is still open.
  readKey("hash", "Data Size: 25byte(s) Data Count:3");
  NSTableView& hash = tab().valueDataHashTable;
  typeInCell(hash, "city", 0, "town");
  keys("Tab 'Ockham Return");
  chooseInMenu(hash, "born", "Delete Selected Row(s)");
  chooseInMenu(hash, "name", "Add Row");
  keys("'\\Byv4= Tab '字段的值");
  // Another client changes the key's type before the save: what the form shows is what comes to be.
  client.commands({{"DEL", "hash"}, {"SADD", "hash", "no field"}});
  save();
  EXPECT_EQ(said("HGETALL hash"), "name,Ada,town,Ockham,\xCA\xFE,字段的值");
}

TEST_F(Editing, ARenamedKeyStaysMovesOrGetsABrother) {
  const std::string question = "Are you sure to Move old key 'hash' to key ";
  readKey("hash", "Data Size: 25byte(s) Data Count:3");
  typeInCell(tab().valueDataHashTable, "Ada", 1, "Ada Byron");
  retype(tab().txtKey, "brother");
  alerts.answerNext(cancel);
  click(tab().btnSave);
  EXPECT_EQ(alerts.messages(), Texts{question + "'brother'?"});
  alerts.clear();
  EXPECT_EQ(said("EXISTS brother"), ":0");
  alerts.answerNext(otherwise);
  save({question + "'brother'?"});
  EXPECT_EQ(said("HGETALL hash"), "name,Ada,city,London,born,1815");
  EXPECT_EQ(said("HGETALL brother"), "name,Ada Byron,city,London,born,1815");
  waitForKeys({"brother", "hash", "list", "set", "text", "zset"});

  readKey("list", "Data Size: 16byte(s) Data Count:3");
  readKey("hash", "Data Size: 25byte(s) Data Count:3");
  retype(tab().txtKey, "moved");
  retype(tab().txtTTL, "5000");
  save({question + "'moved'?"});
  EXPECT_EQ(said("HGETALL moved"), "name,Ada,city,London,born,1815");
  EXPECT_GE(std::stoi(said("TTL moved").substr(1)), 4900);
  waitForKeys({"brother", "list", "moved", "set", "text", "zset"});
  EXPECT_EQ(said("EXISTS hash"), ":0");
}

TEST_F(Editing, MakesAKeyOfEachTypeAndDeletesOne) {
  newKey("String");
  retype(tab().txtKey, "new:String");
  retype(tab().valueDataStringTxtView, "值");
  save();
  EXPECT_EQ(said("GET new:String"), "值");
  const std::tuple<std::string, const char*, const char*> kinds[] = {
      {"List", "LRANGE new:List 0 -1", "a"},
      {"Set", "SMEMBERS new:Set", "a"},
      {"Hash", "HGETALL new:Hash", "a,1"},
      {"SortedSet", "ZRANGE new:SortedSet 0 -1 WITHSCORES", "a,1"}};
  for (const auto& [kind, command, value] : kinds) {
    newKey(kind);
    retype(tab().txtKey, "new:" + kind);
    const auto refused = [&](const std::string& why) {
      click(tab().btnSave);
      EXPECT_TRUE(alerts.shown().size() == 1 && alerts.messages()[0].starts_with(why));
      alerts.clear();
    };
    refused(kind + " Can Not be Empty.");
    click(tab().btnAddRow);
    keys("'a");
    if (kind == "Hash") keys("Tab '1");
    if (kind == "SortedSet") {
      refused("All 'SortedSet Value Score' must be set.");
      clickRow(tab().valueDataSortedSetTable, "a");
      retype(tab().sortedSetScoreTextField, "1x");
    }
    save();
    waitForText(tab().labType, "Type: " + kind);
    EXPECT_EQ(said(command), value);
  }

  readKey("new:Hash", "Data Size: 2byte(s) Data Count:1");
  const std::string question = "Are you sure to Delete the kev-value with key:'new:Hash'?";
  alerts.answerNext(otherwise);
  click(tab().btnDelete);
  EXPECT_EQ(said("EXISTS new:Hash"), ":1");
  click(tab().btnDelete);
  waitForKeys({"hash", "list", "new:List", "new:Set", "new:SortedSet", "new:String", "set", "text", "zset"});
  EXPECT_EQ(said("EXISTS new:Hash"), ":0");
  EXPECT_EQ(alerts.messages(), (Texts{question, question}));
}

// Between GBK and Base64: a text that was typed and not saved goes with the switch.
TEST_F(Editing, AChangeOfCharsetKeepsWhatWasTyped) {
  client.command({"SET", "text", "\xC4\xE3\xBA\xC3"});
  readKey("text", "Data Size: 4byte(s)");
  NSTextView& text = tab().valueDataStringTxtView;
  choose(tab().popValueDataCharset, "GBK");
  EXPECT_EQ(text.string(), "你好");
  click(text);
  keys("Ctrl+End '吗");
  for (const auto& [charset, shown] : {std::pair("Base64", "xOO6w8Lw"), std::pair("GBK", "你好吗")}) {
    choose(tab().popValueDataCharset, charset);
    EXPECT_EQ(text.string(), shown);
  }
  save();
  EXPECT_EQ(said("GET text"), "\xC4\xE3\xBA\xC3\xC2\xF0");
}

}  // namespace tarn::test
