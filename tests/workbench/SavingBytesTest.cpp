// What a save leaves on a real server, byte for byte.

#include "codec/TextCodec.h"
#include "tests/support/RedisServer.h"
#include "tests/support/RespClient.h"
#include "tests/workbench/TabFixture.h"

#include <QTest>

#include <cstdlib>
#include <map>
#include <random>

namespace tarn::test {
namespace {

constexpr int keeps = 1000;
constexpr int converts = 1001;

// The bulk strings of an array reply, those of nested arrays too.
Texts bulks(const std::string& reply) {
  Texts found;
  for (std::size_t at = 0; at < reply.size();) {
    const std::size_t lineEnd = reply.find("\r\n", at);
    if (reply[at] == '$' && reply[at + 1] != '-') {
      const std::size_t size = std::stoul(reply.substr(at + 1));
      found.push_back(reply.substr(lineEnd + 2, size));
      at = lineEnd + 2 + size + 2;
    } else {
      at = lineEnd + 2;
    }
  }
  return found;
}

// What a server keeps of these rows, in one order: of equal ones the last, and pairs stay together.
Texts kept(const std::string& type, const Texts& value) {
  if (type == "list") return value;
  std::map<std::string, std::string> rows;
  const std::size_t width = type == "set" ? 1 : 2;
  for (std::size_t i = 0; i + width <= value.size(); i += width)
    rows[value[i]] = value[i + width - 1];
  Texts result;
  for (const auto& [row, other] : rows)
    result.insert(result.end(), {row, other});
  return result;
}

class SavingBytesTest : public TabFixture {
protected:
  // Makes "key" anew on the server.
  void make(const std::string& type, const Texts& rows) {
    client->command({"DEL", "key"});
    static const std::map<std::string, std::string> writers{
        {"string", "SET"}, {"list", "RPUSH"}, {"set", "SADD"}, {"hash", "HSET"}, {"zset", "ZADD"}};
    Texts command{writers.at(type), "key"};
    int score = 0;
    for (const std::string& row : rows) {
      if (type == "hash") command.push_back("f" + row);
      if (type == "zset") command.push_back(std::to_string(score++));
      command.push_back(row);
    }
    client->command(command);
  }

  // The value as the program reads it: fields and values in turn, members and scores in turn.
  Texts stored(const std::string& type) {
    if (type == "string") return bulks(client->command({"GET", "key"}));
    if (type == "list") return bulks(client->command({"LRANGE", "key", "0", "-1"}));
    if (type == "zset") return bulks(client->command({"ZRANGE", "key", "0", "-1", "WITHSCORES"}));
    Texts scanned = bulks(client->command({type == "set" ? "SSCAN" : "HSCAN", "key", "0", "COUNT", "1000"}));
    scanned.erase(scanned.begin());
    return scanned;
  }

  void load() {
    click(*outlets().btnReload.widget());
    waitUntilIdle();
  }

  void save() {
    alerts.clear();
    QTest::mouseClick(outlets().btnSave.widget(), Qt::LeftButton);
    settle();
    waitUntilIdle();
  }

  void openAndLeaveCells(NSTableView& table) {
    for (int row = 0; row < table.numberOfRows(); ++row) {
      table.selectRow(row);
      table.becomeFirstResponder();
      press(Qt::Key_F2);
      press(Qt::Key_Tab);
      outlets().txtKey.becomeFirstResponder();
      settle();
    }
  }

  NSTableView& tableOf(const std::string& type) {
    if (type == "hash") return outlets().valueDataHashTable;
    return type == "zset" ? outlets().valueDataSortedSetTable : outlets().valueDataSetTable;
  }

  void openKey() {
    openTab(redis.port());
    search("");
    selectKey("key");
  }

  RedisServer redis{{"--save", ""}};
  std::unique_ptr<RespClient> client = std::make_unique<RespClient>(redis.port());
};

std::string allBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte)
    bytes += static_cast<char>(byte);
  return bytes;
}

// Rows that stand for themselves, whatever is done to their text.
Texts calmRows() {
  return {"plain", "", allBytes(), "a\r\n\tb\b\f", "\"quoted\" \\ \\x", "h\xC3\xA9 中文 😀\xE2\x80\xA8", "\xD6\xD0"};
}

// And those whose text stands for other bytes, with these.
std::map<std::string, std::string> unquietRows() {
  return {{"\\Bqw==", "\xAB"},
          {"\\B", ""},
          {"{\"a\":\"x\\n\\\"y\\\"\"}", "{\"a\":\"x\n\\\"y\\\"\"}"},
          {"C:\\temp", "C:\temp"},
          {"\\\\n", "\\\n"}};
}

Texts converted(Texts rows) {
  const auto changes = unquietRows();
  for (std::string& row : rows) {
    // The fields of the hash are those of the values, behind a letter that leaves no marker.
    if (const auto change = changes.find(row); change != changes.end()) {
      row = change->second;
    } else if (row == "f{\"a\":\"x\\n\\\"y\\\"\"}" || row == "fC:\\temp" || row == "f\\\\n") {
      row = "f" + changes.at(row.substr(1));
    }
  }
  return rows;
}

TEST_F(SavingBytesTest, AskBeforeTheyWriteOtherBytesThanTheValueHolds) {
  Texts rows;
  for (const auto& [row, becomes] : unquietRows())
    rows.push_back(row);
  make("list", {"x"});
  openKey();
  for (const std::string type : {"list", "set", "hash", "zset"}) {
    make(type, calmRows());
    load();
    openAndLeaveCells(tableOf(type));
    Texts before = stored(type);
    save();
    EXPECT_EQ(alerts.messages(), Texts{"Saved."}) << type;
    EXPECT_EQ(kept(type, stored(type)), kept(type, before)) << type;

    Texts all = calmRows();
    all.insert(all.end(), rows.begin(), rows.end());
    make(type, all);
    load();
    openAndLeaveCells(tableOf(type));
    before = stored(type);
    alerts.answerNext(keeps);
    save();
    ASSERT_EQ(alerts.shown().size(), 2U) << type;
    EXPECT_EQ(alerts.shown()[0].buttons, (Texts{"Keep Them", "Convert Them", "Cancel"}));
    EXPECT_EQ(alerts.shown()[0].message, "The text of 5 row(s) stands for other bytes than the value holds.");
    EXPECT_EQ(kept(type, stored(type)), kept(type, before)) << type;

    load();
    alerts.answerNext(1002);
    save();
    EXPECT_EQ(alerts.shown().size(), 1U);
    alerts.answerNext(converts);
    save();
    EXPECT_EQ(kept(type, stored(type)), kept(type, converted(before))) << type;
    // What was converted is so now, though its text is on show as it was.
    save();
    EXPECT_EQ(alerts.messages(), Texts{"Saved."}) << type;

    make(type, all);
    outlets().popValueDataCharset.selectItemWithTitle("Base64");
    load();
    before = stored(type);
    save();
    EXPECT_EQ(alerts.messages(), Texts{"Saved."}) << type;
    EXPECT_EQ(kept(type, stored(type)), kept(type, before)) << type;
    outlets().popValueDataCharset.selectItemWithTitle("utf8");
  }
}

TEST_F(SavingBytesTest, AStringStaysAsLongAsNoHandChangesIt) {
  make("string", {"x"});
  openKey();
  for (const std::string& value : {std::string("C:\\temp\\n\\Bqw==\r\n\t\xC2\xA0"), std::string()}) {
    make("string", {value});
    load();
    save();
    EXPECT_EQ(alerts.messages(), Texts{"Saved."});
    EXPECT_EQ(stored("string"), Texts{value});
  }

  // Selecting what is selected already is no usual form.
  const std::string unusual = "\x1B(Bkey";
  make("string", {unusual});
  outlets().popValueDataCharset.selectItemWithTitle("ISO_2022_JP");
  load();
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "key");
  save();
  ASSERT_EQ(alerts.shown().size(), 2U);
  EXPECT_EQ(alerts.shown()[0].buttons, (Texts{"Keep Them", "Convert Them", "Cancel"}));
  EXPECT_EQ(stored("string"), Texts{unusual});
  alerts.answerNext(converts);
  save();
  EXPECT_EQ(stored("string"), Texts{"key"});

  make("string", {unusual});
  load();
  outlets().valueDataStringTxtView.becomeFirstResponder();
  type("s");
  save();
  EXPECT_EQ(alerts.messages(), Texts{"Saved."});
  EXPECT_EQ(stored("string").front().size(), 4U);
}

TEST_F(SavingBytesTest, AStringThatIsNotOnShowIsReplacedOnlyAfterAQuestion) {
  make("string", {"\xFF\xFE\xFD"});
  openKey();
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "");
  save();
  EXPECT_EQ(alerts.messages(), Texts{"The value isn't on show. Saving replaces its 3 byte(s) with the text shown."});
  EXPECT_EQ(alerts.shown()[0].buttons, (Texts{"Cancel", "Replace"}));
  EXPECT_EQ(stored("string"), Texts{"\xFF\xFE\xFD"});
  outlets().valueDataStringTxtView.becomeFirstResponder();
  type("new");
  save();
  EXPECT_EQ(alerts.shown().size(), 1U);
  alerts.answerNext(1001);
  save();
  EXPECT_EQ(stored("string"), Texts{"new"});
  save();
  EXPECT_EQ(alerts.messages(), Texts{"Saved."});
}

// --- Random rows against the rules -------------------------------------------------------------------------------

struct Model {
  std::string title;
  bool translate = true;

  bool isBase64() const { return title == "Base64"; }

  std::string textOf(const std::string& bytes) const { return rowDisplayText(bytes, title).text; }

  static std::string unescaped(std::string text) {
    static const std::vector<std::pair<std::string, std::string>> steps{{"\\r", "\r"}, {"\\n", "\n"}, {"\\t", "\t"},
                                                                        {"\\b", "\b"}, {"\\f", "\f"}, {"\\\\", "\\"}};
    for (const auto& [from, to] : steps) {
      std::string result;
      for (std::size_t at = 0; at < text.size();) {
        const bool found = text.compare(at, 2, from) == 0;
        result += found ? to : text.substr(at, 1);
        at += found ? 2 : 1;
      }
      text = result;
    }
    return text;
  }

  static std::optional<std::string> plain(const std::optional<Bytes>& bytes) {
    return bytes ? std::optional(std::string(bytes->view())) : std::nullopt;
  }
  std::optional<std::string> encoded(const std::string& text) const {
    return plain(textToBytes(text, charsetForTitle(title)));
  }

  std::string savedAs(const std::string& text, const std::string& bytes) const {
    if (isBase64() || text.starts_with("\\B")) {
      return plain(base64ToBytes(text.starts_with("\\B") ? text.substr(2) : text)).value_or(bytes);
    }
    return encoded(translate ? unescaped(text) : text).value_or(bytes);
  }
};

struct Row {
  std::string text;
  std::string bytes;
};

// Typed into the editor under the table.
void typeInEditor(const Model& model, const std::string& typed, Row& row) {
  // What is shown anyway is no change.
  if (typed == row.text) return;
  std::optional<std::string> bytes;
  if (typed.starts_with("\\B")) {
    bytes = Model::plain(base64ToBytes(typed.substr(2)));
  } else if (!model.isBase64()) {
    bytes = model.encoded(typed);
  }
  if (bytes) {
    row = {typed, *bytes};
  } else {
    // Made from the bytes again, under utf8 where the title is no charset.
    row.text = rowDisplayText(row.bytes, model.isBase64() && typed.starts_with("\\B") ? "utf8" : model.title).text;
  }
}

class RandomRows final {
public:
  explicit RandomRows(unsigned seed) : engine_(seed) {}

  std::size_t below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(engine_); }

  std::string bytes(const std::string& title) {
    static const std::string busy = "\\\\\\rntbfB/w=qA\" ";
    static const Texts words{"é", "中", "文", "かな", "한", "Ж", "ß", "😀", "א", "\\n", "\\Bqw=="};
    std::string result;
    for (std::size_t length = below(9); length > 0; --length) {
      switch (below(3)) {
        case 0:
          result += static_cast<char>(below(256));
          break;
        case 1:
          result += busy[below(busy.size())];
          break;
        default:
          if (const auto encoded = textToBytes(words[below(words.size())], charsetForTitle(title)))
            result += std::string(encoded->view());
      }
    }
    return below(8) == 0 ? "\\B" + result : result;
  }

  std::string typed() {
    static const std::string letters = "\\\\nrtbfBqw=/Ax ";
    static const Texts whole{"\\Bqw==", "\\B", "\\\\n", "C:\\temp", "\\B!", "é", "中\\t"};
    if (below(3) == 0) return whole[below(whole.size())];
    std::string result;
    for (std::size_t length = 1 + below(6); length > 0; --length)
      result += letters[below(letters.size())];
    return result;
  }

private:
  std::mt19937 engine_;
};

TEST_F(SavingBytesTest, LoadEditSaveAndReloadFollowTheRules) {
  const auto numberIn = [](const char* variable, int otherwise) {
    const char* text = std::getenv(variable);
    return text ? std::atoi(text) : otherwise;
  };
  // A case that failed is run again by its number.
  const int first = numberIn("TARN_SAVE_FIRST", 0);
  const int end = first + numberIn("TARN_SAVE_CASES", 300);
  make("list", {"x"});
  openKey();
  const std::vector<std::string> titles = charsetTitles();
  const Texts types{"list", "set", "hash", "zset"};
  for (int number = first; number < end; ++number) {
    RandomRows random(static_cast<unsigned>(number));
    const Model model{titles[random.below(titles.size())], random.below(2) == 0};
    const std::string type = types[random.below(types.size())];
    Texts made;
    for (std::size_t row = 0; row <= random.below(5); ++row)
      made.push_back(random.bytes(model.title));
    SCOPED_TRACE("case " + std::to_string(number) + " " + type + " " + model.title);

    make(type, made);
    outlets().popValueDataCharset.selectItemWithTitle(model.title);
    load();
    if (!model.translate) click(*outlets().chkTranslate.widget());
    const bool isPaired = type == "hash" || type == "zset";
    std::vector<Row> rows;
    for (const std::string& bytes : stored(type))
      rows.push_back({model.textOf(bytes), bytes});

    // The first column of one row.
    NSTableView& table = tableOf(type);
    const int edited = static_cast<int>(random.below(static_cast<std::size_t>(table.numberOfRows())));
    Row& row = rows[static_cast<std::size_t>(isPaired ? 2 * edited : edited)];
    table.selectRow(edited);
    const std::string typed = random.typed();
    NSTextView& editor = type == "hash"   ? outlets().hashKeyTextView
                         : type == "zset" ? outlets().sortedSetValueTextView
                                          : outlets().setValueTextView;
    editor.becomeFirstResponder();
    press(Qt::Key_A, Qt::ControlModifier);
    test::type(typed);
    typeInEditor(model, typed, row);

    const bool keepsBytes = random.below(2) == 0;
    bool asks = false;
    Texts expected;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const bool isScore = type == "zset" && i % 2 == 1;
      const std::string saved = isScore ? rows[i].bytes : model.savedAs(rows[i].text, rows[i].bytes);
      asks = asks || saved != rows[i].bytes;
      expected.push_back(keepsBytes ? rows[i].bytes : saved);
    }
    if (asks) alerts.answerNext(keepsBytes ? keeps : converts);
    save();
    ASSERT_EQ(alerts.shown().size(), asks ? 2U : 1U) << ::testing::PrintToString(alerts.messages());
    ASSERT_EQ(alerts.messages().back(), "Saved.");

    ASSERT_EQ(kept(type, stored(type)), kept(type, expected));

    load();
    ASSERT_EQ(alerts.shown().size(), asks ? 2U : 1U);
    outlets().chkTranslate.setState(false);
    Texts texts;
    const Texts again = stored(type);
    for (std::size_t i = 0; i < again.size(); i += isPaired ? 2 : 1)
      texts.push_back(model.textOf(again[i]));
    table.reloadData();
    ASSERT_EQ(TabFixture::texts(table, 0), texts);
  }
}

}  // namespace
}  // namespace tarn::test
