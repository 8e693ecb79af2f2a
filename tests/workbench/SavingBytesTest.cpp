// What a save leaves on a real server, byte for byte. What text stands for is worked out anew here, over the C library
// and the toolkit.

#include "tests/support/RedisServer.h"
#include "tests/support/RespClient.h"
#include "tests/workbench/TabFixture.h"

#include <QTest>
#include <iconv.h>

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
    const std::size_t lineEnd = reply.find("\r\n", at) + 2;
    const bool isBulk = reply[at] == '$' && reply[at + 1] != '-';
    const std::size_t size = isBulk ? std::stoul(reply.substr(at + 1)) : 0;
    if (isBulk) found.push_back(reply.substr(lineEnd, size));
    at = isBulk ? lineEnd + size + 2 : lineEnd;
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
    waitUntilIdle();
  }

  NSTableView& tableOf(const std::string& type) {
    if (type == "hash") return outlets().valueDataHashTable;
    return type == "zset" ? outlets().valueDataSortedSetTable : outlets().valueDataSetTable;
  }
  void openCellOf(NSTableView& table, int row) {
    table.selectRow(row);
    table.becomeFirstResponder();
    press(Qt::Key_F2);
  }

  void openKey(const std::string& type, const Texts& rows) {
    make(type, rows);
    openTab(redis.port());
    search("");
    selectKey("key");
  }

  RedisServer redis{{"--save", ""}};
  std::unique_ptr<RespClient> client = std::make_unique<RespClient>(redis.port());
};

TEST_F(SavingBytesTest, RowsAreAskedAboutBeforeOtherBytesAreWrittenThanTheValueHolds) {
  std::string allBytes;
  for (int byte = 0; byte < 256; ++byte)
    allBytes += static_cast<char>(byte);
  const Texts rows{"plain", allBytes, "\\Bqw==", "\\B", "C:\\temp", "\x1B(Bkey"};
  openKey("list", rows);
  for (const auto& [answer, saved] :
       {std::pair{1002, rows}, std::pair{keeps, rows},
        std::pair{converts, Texts{"plain", allBytes, "\xAB", "", "C:\temp", "\x1B(Bkey"}}}) {
    alerts.answerNext(answer);
    save();
    const AlertRecorder::Shown& question = alerts.shown().front();
    EXPECT_EQ(question.buttons, (Texts{"Keep Them", "Convert Them", "Cancel"}));
    EXPECT_EQ(question.message, "The text of 3 row(s) stands for other bytes than the value holds.");
    EXPECT_EQ(question.informative.substr(0, 44), "1 row(s) hold backslash sequences, which \"Tr");
    EXPECT_NE(question.informative.find("\n2 row(s) begin with the characters \\B"), std::string::npos);
    EXPECT_EQ(stored("list"), saved);
  }
  // What was converted is so now, though its text is on show as it was.
  save();
  EXPECT_EQ(alerts.messages(), Texts{"Saved."});
}

TEST_F(SavingBytesTest, AStringIsAskedAboutWhereItIsNotInItsUsualFormOrNotOnShow) {
  // Selecting what is selected already is no usual form.
  const std::string unusual = "\x1B(Bkey";
  const std::string notOnShow = "The value isn't on show. Saving replaces its 3 byte(s) with the text shown.";
  const std::string otherBytes = "The text shown stands for other bytes than the value holds.";
  const std::string calm = "C:\\temp\\n\\Bqw==\r\n\t\xC2\xA0";
  // Value, form, what is typed; the answer, what is saved, the alerts.
  const std::vector<std::tuple<std::string, const char*, std::string, int, std::string, Texts>> cases{
      {calm, "utf8", "", 0, calm, {"Saved."}},
      {"", "utf8", "", 0, "", {"Saved."}},
      {unusual, "ISO_2022_JP", "", keeps, unusual, {otherBytes, "Saved."}},
      {unusual, "ISO_2022_JP", "", converts, "key", {otherBytes, "Saved."}},
      {unusual, "ISO_2022_JP", "s", 0, "keys", {"Saved."}},
      {"\xFF\xFE\xFD", "utf8", "", 1000, "\xFF\xFE\xFD", {notOnShow}},
      {"\xFF\xFE\xFD", "utf8", "new", 1001, "new", {notOnShow, "Saved."}}};
  openKey("string", {"x"});
  for (const auto& [value, form, typed, answer, saved, told] : cases) {
    SCOPED_TRACE(value + typed);
    make("string", {value});
    outlets().popValueDataCharset.selectItemWithTitle(form);
    load();
    outlets().valueDataStringTxtView.becomeFirstResponder();
    press(Qt::Key_End);
    type(typed);
    if (answer > 0) alerts.answerNext(answer);
    save();
    EXPECT_EQ(alerts.messages(), told);
    EXPECT_EQ(stored("string"), Texts{saved});
  }
  save();
  EXPECT_EQ(alerts.messages(), Texts{"Saved."});
}

// --- Random rows against the rules -------------------------------------------------------------------------------

// The character sets whose whole meaning is the C library's, under its names; and Base64.
// clang-format off
const std::vector<std::pair<const char*, const char*>> forms{
    {"utf8", "UTF-8"}, {"Base64", nullptr}, {"utf16BigEndian", "UTF-16BE"}, {"utf32LittleEndian", "UTF-32LE"}, {"GBK", "GBK"},
    {"GB18030", "GB18030"}, {"big5", "BIG5"}, {"EUC_JP", "EUC-JP"}, {"EUC_KR", "EUC-KR"}, {"ISO_2022_JP", "ISO-2022-JP"},
    {"iso_8859_1", "ISO-8859-1"}, {"iso_8859_5", "ISO-8859-5"}, {"Hebrew", "CP1255"}, {"KOI8_R", "KOI8-R"}};
// clang-format on

using Maybe = std::optional<std::string>;

Maybe converted(std::string from, const char* fromSet, const char* toSet) {
  const iconv_t conversion = iconv_open(toSet, fromSet);
  std::string to(from.size() * 8 + 64, '\0');
  char* in = from.data();
  char* out = to.data();
  std::size_t inLeft = from.size();
  std::size_t outLeft = to.size();
  const bool isDone =
      iconv(conversion, &in, &inLeft, &out, &outLeft) == 0 && iconv(conversion, nullptr, nullptr, &out, &outLeft) == 0;
  iconv_close(conversion);
  to.resize(to.size() - outLeft);
  return isDone ? Maybe(to) : std::nullopt;
}

Maybe base64Decoded(const std::string& text) {
  const auto decoded =
      QByteArray::fromBase64Encoding(QByteArray::fromStdString(text), QByteArray::AbortOnBase64DecodingErrors);
  return decoded && text.size() % 4 == 0 ? Maybe(decoded.decoded.toStdString()) : std::nullopt;
}

std::string unescaped(std::string text) {
  for (const auto& [letter, meaning] :
       {std::pair{'r', '\r'}, {'n', '\n'}, {'t', '\t'}, {'b', '\b'}, {'f', '\f'}, {'\\', '\\'}}) {
    for (std::size_t at = text.find({'\\', letter}); at != std::string::npos; at = text.find({'\\', letter}, at + 1))
      text.replace(at, 2, 1, meaning);
  }
  return text;
}

struct ModelRow {
  std::string text;
  std::string bytes;
};

struct Model {
  const char* name;
  const char* set;
  bool translates;

  Maybe encoded(const std::string& text) const { return converted(text, "UTF-8", set); }

  std::string textOf(const std::string& bytes) const {
    const Maybe text = set ? converted(bytes, set, "UTF-8") : std::nullopt;
    return text.value_or("\\B" + QByteArray::fromStdString(bytes).toBase64().toStdString());
  }
  std::string savedAs(const ModelRow& row) const {
    const bool isMarked = row.text.starts_with("\\B");
    if (isMarked || !set) return base64Decoded(isMarked ? row.text.substr(2) : row.text).value_or(row.bytes);
    return encoded(translates ? unescaped(row.text) : row.text).value_or(row.bytes);
  }

  void typeInEditor(const std::string& typed, ModelRow& row) const {
    if (typed == row.text) return;
    const bool isMarked = typed.starts_with("\\B");
    Maybe bytes;
    if (isMarked || set) bytes = isMarked ? base64Decoded(typed.substr(2)) : encoded(typed);
    if (bytes) {
      row = {typed, *bytes};
    } else {
      // Made from the bytes again, in utf8 where the form is none.
      row.text = !set && isMarked ? Model{"utf8", "UTF-8", false}.textOf(row.bytes) : textOf(row.bytes);
    }
  }
  // And confirmed; a save finds an emptied cell.
  void typeInCell(const std::string& typed, const std::string& shown, ModelRow& row) const {
    if (typed == shown) return;
    if (!set || typed.starts_with("\\B")) {
      const QString text = QString::fromStdString(typed);
      if (text.size() < 2) return row = {}, void();
      if (const Maybe bytes = base64Decoded(text.mid(2).toStdString())) row = {typed, *bytes};
    } else {
      const std::string clear = translates ? unescaped(typed) : typed;
      if (const Maybe bytes = encoded(clear)) row = {clear, *bytes};
    }
  }
};

class RandomRows final {
public:
  explicit RandomRows(unsigned seed) : engine_(seed) {}

  std::size_t below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(engine_); }
  const std::string& oneOf(const Texts& texts) { return texts[below(texts.size())]; }
  std::string letterOf(std::string_view letters) { return {letters[below(letters.size())]}; }

  std::string bytes(const Model& model) {
    static const Texts words{"é", "中", "文", "かな", "한", "Ж", "ß", "😀", "א", "\\n", "\\Bqw=="};
    std::string result = below(8) == 0 ? "\\B" : "";
    for (std::size_t length = below(9); length > 0; --length) {
      const std::string& word = oneOf(words);
      result += oneOf({std::string(1, static_cast<char>(below(256))), letterOf("\\\\\\rntbfB/w=qA\" "),
                       model.set ? model.encoded(word).value_or("") : word});
    }
    return result;
  }

  std::string typed() {
    static const Texts whole{"\\Bqw==", "\\B", "\\\\n", "C:\\temp", "\\B!", "é", "中\\t", "x", "..qw=="};
    if (below(3) == 0) return oneOf(whole);
    std::string result;
    for (std::size_t length = 1 + below(6); length > 0; --length)
      result += letterOf("\\\\nrtbfBqw=/Ax ");
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
  openKey("list", {"x"});
  const Texts types{"list", "set", "hash", "zset"};
  for (int number = first; number < end; ++number) {
    RandomRows random(static_cast<unsigned>(number));
    const auto& [name, set] = forms[random.below(forms.size())];
    const Model model{name, set, random.below(2) == 0};
    const std::string type = types[random.below(types.size())];
    Texts made;
    for (std::size_t row = 0; row <= random.below(5); ++row)
      made.push_back(random.bytes(model));
    SCOPED_TRACE("case " + std::to_string(number) + " " + type + " " + model.name);

    make(type, made);
    outlets().popValueDataCharset.selectItemWithTitle(model.name);
    load();
    if (!model.translates) click(*outlets().chkTranslate.widget());
    std::vector<ModelRow> rows;
    for (const std::string& bytes : stored(type))
      rows.push_back({model.textOf(bytes), bytes});

    // The first column of one row, in its cell or in the editor under the table.
    NSTableView& table = tableOf(type);
    const std::size_t width = type == "hash" || type == "zset" ? 2 : 1;
    const std::size_t edited = random.below(rows.size() / width);
    ModelRow& row = rows[width * edited];
    const std::string typed = random.typed();
    const bool isInCell = random.below(2) == 0;
    openCellOf(table, static_cast<int>(edited));
    if (isInCell) {
      model.typeInCell(typed, table.viewAtColumn(0, static_cast<int>(edited), true)->stringValue(), row);
      replaceText(typed);
      press(Qt::Key_Return);
    } else {
      NSTextView& editor = type == "hash"   ? outlets().hashKeyTextView
                           : type == "zset" ? outlets().sortedSetValueTextView
                                            : outlets().setValueTextView;
      editor.becomeFirstResponder();
      replaceText(typed);
      model.typeInEditor(typed, row);
    }

    const bool keepsBytes = random.below(2) == 0;
    bool asks = false;
    Texts expected;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const bool isScore = type == "zset" && i % 2 == 1;
      const std::string saved = isScore ? rows[i].bytes : model.savedAs(rows[i]);
      asks = asks || saved != rows[i].bytes;
      expected.push_back(keepsBytes ? rows[i].bytes : saved);
    }
    if (asks) alerts.answerNext(keepsBytes ? keeps : converts);
    save();
    ASSERT_EQ(alerts.shown().size(), asks ? 2U : 1U) << ::testing::PrintToString(alerts.messages());
    ASSERT_EQ(alerts.messages().back(), "Saved.");
    ASSERT_EQ(kept(type, stored(type)), kept(type, expected));

    load();
    outlets().chkTranslate.setState(false);
    Texts again;
    const Texts value = stored(type);
    for (std::size_t i = 0; i < value.size(); i += width)
      again.push_back(model.textOf(value[i]));
    table.reloadData();
    ASSERT_EQ(texts(table, 0), again);
  }
}

}  // namespace
}  // namespace tarn::test
