#include "tests/support/RedisServer.h"
#include "tests/support/RespPeer.h"
#include "tests/support/program/ProgramTest.h"

#include <string>

namespace tarn::test {

namespace {

constexpr int confirm = 1000;
constexpr int otherwise = 1001;
constexpr int cancel = 1002;

// A second client stands beside, and says what is on the server.
class Editing : public ProgramTest {
protected:
  Editing() {
    client.pipeline({{"SET", "text", "a text", "EX", "5000"},
                     {"RPUSH", "list", "first", "second", "third"},
                     {"SADD", "set", "1", "2", "3"},
                     {"HSET", "hash", "name", "Ada", "city", "London", "born", "1815"},
                     {"ZADD", "zset", "-3", "lowest", "1.5", "low", "1e21", "high"}});
    store("lake", redis.port());
    openWindow();
    openDatabase("lake", "db0(");
    waitForKeys({"hash", "list", "set", "text", "zset"});
  }

  // A row at the table's end or behind the selected one; its first cell is open then.
  void addRow(std::string_view text) {
    click(tab().btnAddRow);
    type(text);
  }

  // A reply of several words, as the server sends it.
  testing::AssertionResult holds(const std::vector<std::string>& command, const Texts& words) {
    const std::string reply = client.command(command);
    if (reply == encodedRequest(words)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << reply;
  }

  RedisServer redis{{"--databases", "2"}};
  RespClient client{redis.port()};
};

}  // namespace

TEST_F(Editing, ChangesAddsAndDeletesRowsOfEachType) {
  // A text, from the middle of which a line is typed over; its time to live becomes another.
  readKey("text", "Data Size: 6byte(s)");
  click(tab().valueDataStringTxtView);
  press(Qt::Key_Home, Qt::ControlModifier);
  press(Qt::Key_Right);
  type(" longer");
  press(Qt::Key_Return);
  retype(tab().txtTTL, "-1");
  saveByKey();
  EXPECT_EQ(client.command({"GET", "text"}), "$14\r\na longer\n text\r\n");
  EXPECT_EQ(client.command({"TTL", "text"}), ":-1\r\n");

  // A list by mouse: a cell, a row out by the menu, a row in behind the selected one, an element in its editor.
  readKey("list", "Data Size: 16byte(s) Data Count:3");
  NSTableView& list = tab().valueDataSetTable;
  typeInCell(list, "second", 0, "2nd \\n line");
  press(Qt::Key_Return);
  chooseInMenu(list, "third", "Delete Selected Row(s)");
  clickRow(list, "first");
  addRow("behind the first");
  press(Qt::Key_Return);
  EXPECT_EQ(texts(list), (Texts{"first", "behind the first", "2nd \\n line"}));
  clickRow(list, "first");
  retype(tab().setValueTextView, "in the editor");
  save();
  EXPECT_TRUE(holds({"LRANGE", "list", "0", "-1"}, {"in the editor", "behind the first", "2nd \n line"}));

  // A set by keyboard alone.
  readKey("set", "Data Size: 3byte(s) Data Count:3");
  tab().valueDataSetTable.widget()->setFocus(Qt::TabFocusReason);
  press(Qt::Key_Home);
  press(Qt::Key_F2);
  press(Qt::Key_A, Qt::ControlModifier);
  type("one");
  press(Qt::Key_Return);
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  press(Qt::Key_End);
  type("5");
  press(Qt::Key_Tab);
  press(Qt::Key_Escape);
  saveByKey();
  EXPECT_EQ(client.command({"SMISMEMBER", "set", "one", "25", "3", "1", "2"}), "*5\r\n:1\r\n:1\r\n:1\r\n:0\r\n:0\r\n");

  // A hash: from field to value by Tab, and a save over a cell that is still open.
  readKey("hash", "Data Size: 25byte(s) Data Count:3");
  NSTableView& hash = tab().valueDataHashTable;
  typeInCell(hash, "city", 0, "town");
  press(Qt::Key_Tab);
  type("Ockham");
  press(Qt::Key_Return);
  clickRow(hash, "born");
  click(tab().btnDeleteSelectedRows);
  chooseInMenu(hash, "name", "Add Row");
  type("\\Byv4=");
  press(Qt::Key_Tab);
  type("字段的值");
  save();
  EXPECT_TRUE(holds({"HGETALL", "hash"}, {"name", "Ada", "town", "Ockham", "\xCA\xFE", "字段的值"}));

  // Scores, of which an untouched one stays as the server wrote it.
  readKey("zset", "Data Size: 23byte(s) Data Count:6");
  NSTableView& zset = tab().valueDataSortedSetTable;
  typeInCell(zset, "1.5", 1, "2.5");
  press(Qt::Key_Return);
  typeInCell(zset, "low", 0, "lower");
  press(Qt::Key_Return);
  clickRow(zset, "lowest");
  click(tab().btnDeleteSelectedRows);
  addRow("without a score");
  press(Qt::Key_Return);
  click(tab().btnSave);
  EXPECT_EQ(alerts.messages(), Texts{"All 'SortedSet Value Score' must be set."});
  alerts.clear();
  clickRow(zset, "without a score");
  retype(tab().sortedSetScoreTextField, "7x");
  save();
  EXPECT_TRUE(
      holds({"ZRANGE", "zset", "0", "-1", "WITHSCORES"}, {"lower", "2.5", "without a score", "7", "high", "1e+21"}));

  // What is read back is what was typed.
  click(tab().btnReload);
  waitForIdle();
  EXPECT_EQ(texts(zset, 0), (Texts{"lower", "without a score", "high"}));
  EXPECT_EQ(texts(zset, 1), (Texts{"2.5", "7", "1e+21"}));
  EXPECT_EQ(alerts.messages(), Texts{});
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
  EXPECT_EQ(client.command({"EXISTS", "brother"}), ":0\r\n");
  EXPECT_EQ(client.command({"HGET", "hash", "name"}), "$3\r\nAda\r\n");

  alerts.answerNext(otherwise);
  save({question + "'brother'?"});
  EXPECT_EQ(client.command({"HGET", "hash", "name"}), "$3\r\nAda\r\n");
  EXPECT_EQ(client.command({"HGET", "brother", "name"}), "$9\r\nAda Byron\r\n");
  waitForKeys({"brother", "hash", "list", "set", "text", "zset"});

  readKey("list", "Data Size: 16byte(s) Data Count:3");
  readKey("hash", "Data Size: 25byte(s) Data Count:3");
  retype(tab().txtKey, "moved");
  retype(tab().txtTTL, "5000");
  alerts.answerNext(confirm);
  save({question + "'moved'?"});
  EXPECT_EQ(client.command({"EXISTS", "hash"}), ":0\r\n");
  EXPECT_EQ(client.command({"HLEN", "moved"}), ":3\r\n");
  EXPECT_TRUE(client.command({"TTL", "moved"}).starts_with(":4999") ||
              client.command({"TTL", "moved"}).starts_with(":5000"));
  waitForKeys({"brother", "list", "moved", "set", "text", "zset"});
}

// Another client changes the key's type between the load and the save: what the form shows is what comes to be.
TEST_F(Editing, ASaveWritesTheValueAlsoOverAnotherType) {
  readKey("hash", "Data Size: 25byte(s) Data Count:3");
  typeInCell(tab().valueDataHashTable, "Ada", 1, "Ada Byron");
  press(Qt::Key_Return);
  client.pipeline({{"DEL", "hash"}, {"SADD", "hash", "no field"}});
  save();
  EXPECT_TRUE(holds({"HGETALL", "hash"}, {"name", "Ada Byron", "city", "London", "born", "1815"}));

  readKey("text", "Data Size: 6byte(s)");
  retype(tab().valueDataStringTxtView, "typed");
  client.pipeline({{"DEL", "text"}, {"RPUSH", "text", "no text"}});
  save();
  EXPECT_EQ(client.command({"GET", "text"}), "$5\r\ntyped\r\n");
}

TEST_F(Editing, MakesAKeyOfEachTypeAndDeletesOne) {
  newKey("String");
  retype(tab().txtKey, "new:String");
  retype(tab().valueDataStringTxtView, "值");
  save();
  EXPECT_EQ(client.command({"GET", "new:String"}), "$3\r\n值\r\n");
  const std::pair<std::string, std::string> kinds[] = {{"List", "Data Size: 1byte(s) Data Count:1"},
                                                       {"Set", "Data Size: 1byte(s) Data Count:1"},
                                                       {"Hash", "Data Size: 2byte(s) Data Count:1"},
                                                       {"SortedSet", "Data Size: 2byte(s) Data Count:2"}};
  for (const auto& [kind, dataSize] : kinds) {
    newKey(kind);
    retype(tab().txtKey, "new:" + kind);
    click(tab().btnSave);
    ASSERT_EQ(alerts.shown().size(), 1U);
    EXPECT_TRUE(alerts.shown()[0].message.starts_with(kind + " Can Not be Empty."));
    alerts.clear();
    addRow("a");
    if (kind == "Hash" || kind == "SortedSet") {
      press(Qt::Key_Tab);
      type("1");
    }
    save();
    waitForText(tab().labDataSize, dataSize);
    EXPECT_EQ(tab().labType.stringValue(), "Type: " + kind);
  }
  EXPECT_TRUE(holds({"LRANGE", "new:List", "0", "-1"}, {"a"}));
  EXPECT_TRUE(holds({"SMEMBERS", "new:Set"}, {"a"}));
  EXPECT_TRUE(holds({"HGETALL", "new:Hash"}, {"a", "1"}));
  EXPECT_TRUE(holds({"ZRANGE", "new:SortedSet", "0", "-1", "WITHSCORES"}, {"a", "1"}));

  readKey("new:Hash", "Data Size: 2byte(s) Data Count:1");
  alerts.answerNext(otherwise);
  click(tab().btnDelete);
  EXPECT_EQ(client.command({"EXISTS", "new:Hash"}), ":1\r\n");
  click(tab().btnDelete);
  waitForKeys({"hash", "list", "new:List", "new:Set", "new:SortedSet", "new:String", "set", "text", "zset"});
  EXPECT_EQ(client.command({"EXISTS", "new:Hash"}), ":0\r\n");
  const std::string question = "Are you sure to Delete the kev-value with key:'new:Hash'?";
  EXPECT_EQ(alerts.messages(), (Texts{question, question}));
  EXPECT_EQ(tab().txtKey.stringValue(), "");
  EXPECT_EQ(tab().tableKeys.selectedRow(), -1);
}

// Between GBK and Base64: a text that was typed and not saved goes with the switch, a cell that was changed too.
TEST_F(Editing, AChangeOfCharsetKeepsWhatWasTyped) {
  const std::string hello = "\xC4\xE3\xBA\xC3";
  client.pipeline({{"SET", "text", hello}, {"DEL", "list"}, {"RPUSH", "list", hello, "ASCII"}});
  readKey("text", "Data Size: 4byte(s)");
  EXPECT_EQ(tab().valueDataStringTxtView.string(), "");
  choose(tab().popValueDataCharset, "GBK");
  EXPECT_EQ(tab().valueDataStringTxtView.string(), "你好");
  click(tab().valueDataStringTxtView);
  press(Qt::Key_End, Qt::ControlModifier);
  type("吗");
  choose(tab().popValueDataCharset, "Base64");
  EXPECT_EQ(tab().valueDataStringTxtView.string(), "xOO6w8Lw");
  choose(tab().popValueDataCharset, "GBK");
  EXPECT_EQ(tab().valueDataStringTxtView.string(), "你好吗");
  save();
  EXPECT_EQ(client.command({"GET", "text"}), "$6\r\n" + hello + "\xC2\xF0\r\n");

  readKey("list", "Data Size: 9byte(s) Data Count:2");
  NSTableView& list = tab().valueDataSetTable;
  typeInCell(list, "ASCII", 0, "吗");
  press(Qt::Key_Return);
  choose(tab().popValueDataCharset, "Base64");
  EXPECT_EQ(texts(list), (Texts{"\\BxOO6ww==", "\\BwvA="}));
  choose(tab().popValueDataCharset, "GBK");
  EXPECT_EQ(texts(list), (Texts{"你好", "吗"}));
  save();
  EXPECT_TRUE(holds({"LRANGE", "list", "0", "-1"}, {hello, "\xC2\xF0"}));
}

}  // namespace tarn::test
