#include "workbench/save/RowsToSave.h"
#include "workbench/text/SearchPattern.h"
#include "workbench/text/TypedText.h"
#include "workbench/value/DoubleClicks.h"
#include "workbench/value/ValueRows.h"

#include <gtest/gtest.h>

namespace tarn::test {
namespace {

using namespace std::string_literals;

// The form of this name; with a "+" behind it what is typed holds escapes.
TextForm formNamed(std::string_view name) {
  const bool translates = name.ends_with('+');
  const std::vector<std::string> names = textFormNames();
  const auto found = std::ranges::find(names, name.substr(0, name.size() - (translates ? 1 : 0)));
  return textFormAt(static_cast<int>(found - names.begin()), translates);
}

// What became of a typed text: its bytes, or its alert.
std::string outcome(const BytesOrAlert& typed) {
  return typed.hasValue() ? std::string(typed.value().view()) : "! " + typed.alert();
}

TEST(TypedText, ReadsAKeyAsTheFormSays) {
  EXPECT_EQ(textFormNames().size(), 47U);
  EXPECT_EQ(textFormNames()[1], formNamed("Base64").name());
  EXPECT_EQ(textFormAt(-1, true), formNamed("utf8+"));
  // clang-format off
  const std::vector<std::array<std::string, 3>> cases{
      {"\\B/w==", "utf8+", "\xFF"}, {"\\B/w==", "utf8", "\\B/w=="}, {"a\\nb", "utf8", "a\\nb"},
      {"a\\\\n\\n", "utf8+", "a\\n\n"}, {"/w==", "Base64", "\xFF"}, {"\\B/w==", "Base64+", "\xFF"},
      {"\\B/w=", "utf8+", "! Can not decode Base64 Key '\\B/w='"},
      {"\\B/w==", "Base64", "! Can not decode Base64 Key '\\B/w=='"},
      {"中{1}", "iso_8859_1+", "! Can not encode the Key '中{1}' to the charset 'iso_8859_1'"}};
  // clang-format on
  for (const auto& [text, form, expected] : cases)
    EXPECT_EQ(outcome(keyFromText(text, formNamed(form))), expected) << text << form;
  EXPECT_EQ(keyText("\xFF", formNamed("utf8")), "\\B/w==");
  for (const Bytes& key : {"a\\nb\n\r\t\b\f\\"_bytes, "\xFF\x00"_bytes, ""_bytes})
    EXPECT_EQ(outcome(keyFromText(keyText(key.view(), formNamed("GBK+")), formNamed("GBK+"))), key.view());
  EXPECT_EQ(keyTextTranslated("a\\b\n\tz", true), "a\\\\b\\n\\tz");
  EXPECT_EQ(keyTextTranslated("a\\\\b\\n\\tz", false), "a\\b\n\tz");
  EXPECT_EQ(keyTextTranslated("\\B/w==", false), "/w==");
}

TEST(SearchPattern, HoldsWhatIsTypedForTheServerAsTypedAndAllElseLiterally) {
  using enum Match;
  // clang-format off
  const std::vector<std::tuple<const char*, const char*, Match, std::string>> cases{
      {"user", "utf8", part, "*user*"}, {"user", "utf8", whole, "user"}, {"*user", "utf8", whole, "*user"},
      {"user*", "utf8", whole, "user*"}, {"a**b", "utf8", part, "*a*b*"}, {"a*b*a", "utf8", whole, "a*b*a"},
      {"*", "utf8", whole, "**"}, {"", "Base64", part, "*"}, {"", "utf8", whole, "! "},
      {"u?er[0-9]\\n\\\\n", "utf8", whole, "u?er[0-9]\n\\\\n"}, {"\\Bqw==*tail", "utf8", part, "*\xAB*tail*"},
      {"中*文", "GBK", whole, "\xD6\xD0*\xCE\xC4"}, {"qw==", "Base64", part, "*\xAB*"}, {"\\Bqw==", "Base64", whole, "\xAB"},
      {"ok*\\Bqw=*x", "utf8", part, "! Can not decode base64 part of the Search Key '\\Bqw='"},
      {"a*中", "iso_8859_1", part, "! Can not encode the Search Key to charset 'iso_8859_1'"},
      {"qw==*", "Base64", whole, "! Can not encode the Search Key from Base64"},
      // Signs of a pattern within characters and Base64; and the byte order mark, which only a key's beginning has.
      {"功[能]?\\功", "big5", whole, "\xA5\\\\[\xAF\xE0]?\xA5\\\\"}, {"\\B/1t4XQ==", "utf8", whole, "\xFF\\[x]"}, {"Klw/Ww==", "Base64", part, "*\\*\\\\\\?\\[*"},
      {"字?\\[*a", "utf16", whole, "\xFF\xFEW\\[?\0\\[\0*a\0"s}, {"*字", "utf16", whole, "*W\\["}, {"字", "utf16", part, "*W\\[*"}, {"字", "utf32", part, "*W\\[\0\0*"s},
      {"日?本\\*?", "ISO_2022_JP", whole, "\x1B$BF|\x1B(B?\x1B$BK\\\\\x1B(B\\*?"}, {"輲", "ISO_2022_CN", whole, "\x1B$\\*H\x1BNZx"},
      {"\\B*", "Base64", part, "! Can not decode base64 part of the Search Key '\\B*'"}};
  // clang-format on
  for (const auto& [text, form, match, expected] : cases)
    EXPECT_EQ(outcome(searchPattern(text, formNamed(form), match)), expected) << text;
}

TEST(TypedText, ReadsAStringAsItStandsAndKeepsWhatWasTypedOverAChangeOfForm) {
  EXPECT_EQ(outcome(stringFromText("a\\n\\Bqw==", formNamed("utf8+"))), "a\\n\\Bqw==");
  EXPECT_TRUE(
      outcome(stringFromText("中", formNamed("KOI8_R"))).starts_with("! Can not encode the value to Value Data,"));
  EXPECT_EQ(outcome(stringFromText("x", formNamed("Base64"))),
            "! Can not decode Base64 Value Data, Please Check your Base64 Value Data if is available.");
  const char* const unusual = "\x1B(Jkey\x1B(B";
  // clang-format off
  // The text shown, its form and the new one, the value; the text in the new form, and whether it is what was shown.
  const std::vector<std::tuple<const char*, const char*, const char*, const char*, std::optional<std::string>, bool>> cases{
      {"中x", "GBK", "Base64", "old", "1tB4", true}, {"1tB4", "Base64", "GBK", "old", "中x", true},
      {"1tA=", "Base64", "utf8", "old", {}, true}, {"", "utf8", "GBK", "\xD6\xD0", "中", false},
      {"no Base64", "Base64", "utf8", "old", "old", false}, {"中", "iso_8859_1", "utf8", "old", "old", false},
      {"中", "GBK", "utf8", "old", "old", false}, {"中", "GBK", "utf8", "\xFF", {}, false},
      // What was saved is no edit any more.
      {unusual, "utf8", "ISO_2022_JP", unusual, "key", false}, {unusual, "utf8", "ISO_2022_JP", "old", "key", true}};
  // clang-format on
  for (const auto& [shown, oldForm, newForm, value, text, isShownText] : cases) {
    const StringInNewForm now = stringInNewForm(shown, formNamed(oldForm), formNamed(newForm), value);
    EXPECT_EQ(now.text, text) << shown << newForm;
    EXPECT_EQ(now.isShownText, isShownText) << shown << newForm;
  }
}

using Rows = std::vector<Bytes>;
using Strings = std::vector<std::string>;

ValueRows rowsOf(ValueType type, Rows reply, const char* form) {
  ValueRows rows(1, type == ValueType::sortedSet);
  LoadedRows loaded = loadedRows(type, std::move(reply));
  rows.exchange(loaded, formNamed(form));
  EXPECT_EQ(loaded.columns, std::vector<Rows>(1));
  return rows;
}

Strings textsOf(const ValueRows& rows) {
  Strings result;
  for (std::size_t row = 0; row < rows.rowCount(); ++row)
    result.push_back(rows.columns()[0].text(row));
  return result;
}

TEST(ValueRows, TextsAndScoresMoveWithTheirRows) {
  const Rows reply{"a"_bytes, "1"_bytes, "b"_bytes, "2"_bytes, "c"_bytes, "3"_bytes};
  ValueRows rows = rowsOf(ValueType::sortedSet, reply, "Base64");
  rows.takeCellText(0, 0, "..YQ==", formNamed("Base64"));
  rows.takeCellText(0, 2, "..Yw==", formNamed("Base64"));
  const int revision = rows.revision();
  rows.insertRow(1);
  rows.insertRow(4);
  EXPECT_FALSE(rows.hasRow(-1) || rows.hasRow(5) || !rows.hasRow(4));
  rows.setScore(4, "5");
  EXPECT_EQ(textsOf(rows), (Strings{"..YQ==", "", "\\BYg==", "..Yw==", ""}));
  for (const std::size_t row : {0U, 0U})
    rows.removeRow(row);
  EXPECT_EQ(textsOf(rows), (Strings{"\\BYg==", "..Yw==", ""}));
  EXPECT_EQ(rows.columns()[0].data(), (Rows{"b"_bytes, "c"_bytes, ""_bytes}));
  EXPECT_EQ(rows.scores(), (Strings{"2", "3", "5"}));
  EXPECT_EQ(rows.revision(), revision + 4);
}

// Row, bytes and reason of each change.
Strings changes(Rows rows, const char* shownIn, const char* form) {
  Strings result;
  ValueRows shown = rowsOf(ValueType::list, std::move(rows), shownIn);
  const RowsToSave saved(shown, formNamed(form));
  for (const ConvertedRow& each : saved.changes())
    result.push_back(std::to_string(each.row) + std::string(each.bytes.view()) + "mex"[static_cast<int>(each.reason)]);
  return result;
}

TEST(RowsToSave, FindTheRowsWhoseBytesWouldChangeAndWhy) {
  // clang-format off
  const Rows rows{"plain"_bytes, ""_bytes, "\\Bqw=="_bytes, "\\B!"_bytes, "{\"a\\n\"}"_bytes, "C:\\temp"_bytes,
                  "\xFF"_bytes, "a\r\n\t\"\\"_bytes, "\\x \\\""_bytes, "\\\\server"_bytes};
  // clang-format on
  EXPECT_EQ(changes(rows, "utf8", "utf8+"), (Strings{"2\xABm", "4{\"a\n\"}e", "5C:\tempe", "9\\servere"}));
  EXPECT_EQ(changes(rows, "utf8", "utf8"), Strings{"2\xABm"});
  EXPECT_EQ(changes(rows, "Base64", "Base64+"), Strings());
  EXPECT_EQ(changes({"\x1B(Jkey\x1B(B"_bytes, "key"_bytes}, "ISO_2022_JP", "ISO_2022_JP+"), Strings{"0keyx"});
  EXPECT_EQ(changes({"\xE9"_bytes}, "iso_8859_1", "utf8"), Strings{"0éx"});
}

TEST(RowsToSave, ConvertTheirCopyAndTheFormWhileItsRowsAreTheSame) {
  for (const bool isReplaced : {false, true}) {
    ValueRows rows = rowsOf(ValueType::list, {"\\Bqw=="_bytes, "b"_bytes}, "utf8");
    RowsToSave saved(rows, formNamed("utf8"));
    saved.takeCopy();
    if (isReplaced) rows.removeRow(1);
    saved.convert();
    EXPECT_EQ(saved.column(0), (Rows{"\xAB"_bytes, "b"_bytes}));
    EXPECT_EQ(rows.columns()[0].data(), isReplaced ? Rows{"\\Bqw=="_bytes} : saved.column(0));
  }
}

TEST(DoubleClicks, AreTwoOnOneRowWithinTheTime) {
  DoubleClicks clicks;
  std::string counted;
  const std::pair<double, int> moments[] = {{0.0, 0}, {1.1, 0}, {2.2, 0}, {3.5, 0}, {3.6, 4}, {3.7, 0}, {3.8, 0}};
  for (const auto& [time, row] : moments)
    counted += clicks.click(row, 1000.0 + time) ? '2' : '1';
  EXPECT_EQ(counted, "1221112");
}

}  // namespace
}  // namespace tarn::test
