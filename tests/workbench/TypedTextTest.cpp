#include "tests/workbench/TextForms.h"
#include "workbench/text/TypedText.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace tarn::test {
namespace {

using Text = std::optional<std::string>;

// What became of a typed text: its bytes, its alert, or nothing.
std::string outcome(const BytesOrAlert& typed) {
  return typed.hasValue() ? std::string(typed.value().view()) : "! " + typed.alert();
}

TEST(TextForm, NamesTheCharacterSetsWithBase64AsTheSecond) {
  EXPECT_EQ(textFormNames().size(), 47U);
  for (const std::string& name : textFormNames())
    EXPECT_EQ(formNamed(name).name(), name);
  EXPECT_EQ(textFormNames()[1], "Base64");
  EXPECT_EQ(textFormAt(-1, true), formNamed("utf8+"));
  EXPECT_EQ(textFormAt(8, false).name(), "GB2312");
}

struct Typed {
  const char* text;
  const char* form;
  std::string outcome;
};

TEST(TypedText, ReadsAKeyAsTheFormSays) {
  // clang-format off
  const std::vector<Typed> cases{
      {"\\B/w==", "utf8+", "\xFF"}, {"\\B/w==", "utf8", "\\B/w=="}, {"a\\nb", "utf8", "a\\nb"}, {"a\\\\n\\n", "utf8+", "a\\n\n"},
      {"/w==", "Base64", "\xFF"}, {"/w==", "Base64+", "\xFF"}, {"\\B/w==", "Base64+", "\xFF"},
      {"\\B/w=", "utf8+", "! Can not decode Base64 Key '\\B/w='"}, {"no!", "Base64", "! Can not decode Base64 Key 'no!'"},
      {"\\B/w==", "Base64", "! Can not decode Base64 Key '\\B/w=='"},
      {"中{1}", "iso_8859_1+", "! Can not encode the Key '中{1}' to the charset 'iso_8859_1'"}};
  // clang-format on
  for (const Typed& each : cases)
    EXPECT_EQ(outcome(keyFromText(each.text, formNamed(each.form))), each.outcome) << each.text << each.form;
}

TEST(TypedText, ShowsAKeySoThatItComesBackAsTheSameBytes) {
  EXPECT_EQ(keyText("a\\b\n", formNamed("utf8")), "a\\\\b\\n");
  EXPECT_EQ(keyText("\xFF", formNamed("utf8")), "\\B/w==");
  EXPECT_EQ(keyText("\xD6\xD0", formNamed("GBK")), "中");
  EXPECT_EQ(keyText("a", formNamed("Base64")), "\\BYQ==");
  for (const Bytes& key : {"a\\nb\n\r\t\b\f\\"_bytes, "\xFF\x00"_bytes, "\xD6\xD0"_bytes, ""_bytes}) {
    for (const char* form : {"utf8+", "GBK+", "Base64+", "utf16LittleEndian+"})
      EXPECT_EQ(outcome(keyFromText(keyText(key.view(), formNamed(form)), formNamed(form))), key.view()) << form;
  }
  EXPECT_EQ(keyTextTranslated("a\\b\n\tz", true), "a\\\\b\\n\\tz");
  EXPECT_EQ(keyTextTranslated("a\\\\b\\n\\tz", false), "a\\b\n\tz");
  EXPECT_EQ(keyTextTranslated("\\B/w==", false), "/w==");
}

TEST(TypedText, MakesAPatternOfASearchText) {
  struct Case {
    const char* text;
    const char* form;
    Match match;
    std::string outcome;
  };
  using enum Match;
  // clang-format off
  const std::vector<Case> cases{
      {"user", "utf8", part, "*user*"}, {"user", "utf8", whole, "user"}, {"*user", "utf8", whole, "*user"},
      {"user*", "utf8", whole, "user*"}, {"*user*", "utf8", part, "*user*"}, {"a**b", "utf8", part, "*a*b*"},
      {"a*b*a", "utf8", whole, "a*b*a"}, {"*", "utf8", whole, "**"}, {"", "Base64", part, "*"}, {"", "utf8", whole, "! "},
      {"u?er[0-9]\\n", "utf8", whole, "u?er[0-9]\n"}, {"a\\\\n", "utf8", whole, "a\\\\n"},
      {"\\Bqw==*tail", "utf8", part, "*\xAB*tail*"}, {"中*文", "GBK", whole, "\xD6\xD0*\xCE\xC4"}, {"\\B", "utf8", part, "**"},
      {"qw==", "Base64", part, "*\xAB*"}, {"\\Bqw==", "Base64", whole, "\xAB"},
      {"ok*\\Bqw=*x", "utf8", part, "! Can not decode base64 part of the Search Key '\\Bqw='"},
      {"a*中", "iso_8859_1", part, "! Can not encode the Search Key to charset 'iso_8859_1'"},
      {"qw==*", "Base64", whole, "! Can not encode the Search Key from Base64"},
      {"\\B*", "Base64", part, "! Can not decode base64 part of the Search Key '\\B*'"}};
  // clang-format on
  for (const Case& each : cases)
    EXPECT_EQ(outcome(searchPattern(each.text, formNamed(each.form), each.match)), each.outcome) << each.text;
}

// The row's text and bytes, or why there are none.
std::string typedInCell(const char* text, const char* form) {
  const TypedCell typed = rowTypedInCell(text, formNamed(form));
  static const std::vector<std::string> outcomes{"taken ", "unchanged", "too short", "no Base64", "no text"};
  const std::string& said = outcomes[static_cast<std::size_t>(typed.outcome)];
  return typed.outcome == TypedCell::Outcome::taken ? typed.text + " -> " + std::string(typed.bytes.view()) : said;
}

TEST(TypedText, ReadsARowInItsCell) {
  // clang-format off
  const std::vector<Typed> cases{
      {"a\\nb", "utf8+", "a\nb -> a\nb"}, {"a\\nb", "utf8", "a\\nb -> a\\nb"}, {"\\\\n", "utf8+", "\\\n -> \\\n"},
      {"C:\\x", "utf8+", "C:\\x -> C:\\x"}, {"中", "GBK+", "中 -> \xD6\xD0"}, {"\\Bqw==", "GBK", "\\Bqw== -> \xAB"},
      {"\\B", "utf8+", "\\B -> "}, {"ab", "Base64+", "ab -> "}, {"中éqw==", "Base64", "中éqw== -> \xAB"},
      {"中", "iso_8859_1+", "no text"}, {"\\Bqw=", "utf8+", "no Base64"}, {"中é!", "Base64", "no Base64"},
      {"é", "Base64", "too short"}, {"", "Base64+", "too short"}};
  // clang-format on
  for (const Typed& each : cases)
    EXPECT_EQ(typedInCell(each.text, each.form), each.outcome) << each.text << each.form;
}

TEST(TypedText, ReadsARowInItsEditorWithoutEscapesAndKeepsTheBytesOfOneThatStandsForNone) {
  // clang-format off
  const std::vector<Typed> cases{
      {"a\\nb", "utf8+", "a\\nb -> a\\nb"}, {"中", "GBK", "中 -> \xD6\xD0"}, {"\\B/w==", "utf8", "\\B/w== -> \xFF"},
      {"\\B/w==", "Base64", "\\B/w== -> \xFF"}, {"中", "iso_8859_1", "« -> \xAB"}, {"\\B!", "utf8", "\\Bqw== -> \xAB"},
      {"\\B!", "Base64", "\\Bqw== -> \xAB"}, {"qw==", "Base64", "refused \\Bqw== -> \xAB"}};
  // clang-format on
  for (const Typed& each : cases) {
    const TypedRow typed = rowTypedInEditor(each.text, formNamed(each.form), "\xAB"_bytes);
    EXPECT_EQ((typed.isRefused ? "refused " : "") + typed.text + " -> " + std::string(typed.bytes.view()), each.outcome)
        << each.text << each.form;
  }
  EXPECT_EQ(rowTypedInEditor("\\B!", formNamed("Base64"), "a"_bytes).text, "a");
}

TEST(TypedText, ConvertsARowForASave) {
  // clang-format off
  const std::vector<Typed> cases{
      {"\\Bqw==", "utf8+", "\xAB"}, {"\\Babc", "utf8+", "none"}, {"\\Bqw==", "Base64", "\xAB"}, {"qw==", "Base64+", "\xAB"},
      {"a\\nb", "utf8+", "a\nb"}, {"a\\nb", "utf8", "a\\nb"}, {"\\\\n", "utf8+", "\\\n"}, {"中", "GBK+", "\xD6\xD0"},
      {"中", "iso_8859_1+", "none"}};
  // clang-format on
  for (const Typed& each : cases) {
    const std::optional<Bytes> bytes = bytesOfRow(each.text, formNamed(each.form));
    EXPECT_EQ(bytes ? bytes->view() : "none", each.outcome) << each.text << each.form;
  }
}

TEST(TypedText, ReadsAStringAsItStands) {
  EXPECT_EQ(stringText("\xD6\xD0", formNamed("GBK")), Text("中"));
  EXPECT_EQ(stringText("\xD6\xD0", formNamed("utf8")), Text());
  EXPECT_EQ(stringText("\xD6\xD0", formNamed("Base64")), Text("1tA="));
  EXPECT_EQ(outcome(stringFromText("a\\n\\Bqw==", formNamed("utf8+"))), "a\\n\\Bqw==");
  EXPECT_EQ(outcome(stringFromText("1tA=", formNamed("Base64"))), "\xD6\xD0");
  EXPECT_EQ(outcome(stringFromText("x", formNamed("Base64"))),
            "! Can not decode Base64 Value Data, Please Check your Base64 Value Data if is available.");
  EXPECT_EQ(
      outcome(stringFromText("中", formNamed("KOI8_R"))),
      "! Can not encode the value to Value Data, Please change Value Data's charset besides the 'Reload' button.");
}

TEST(TypedText, KeepsWhatWasTypedInAStringOverAChangeOfFormElseShowsTheValue) {
  struct Case {
    const char* shown;
    const char* oldForm;
    const char* newForm;
    const char* value;
    Text text;
    bool isShownText;
  };
  constexpr const char* unusual = "\x1B(Bkey";
  // clang-format off
  const std::vector<Case> cases{
      {"中x", "GBK", "Base64", "old", "1tB4", true}, {"1tB4", "Base64", "GBK", "old", "中x", true},
      {"é", "utf8", "iso_8859_1", "old", "Ã©", true}, {"1tA=", "Base64", "utf8", "old", std::nullopt, true},
      {"", "utf8", "GBK", "\xD6\xD0", "中", false}, {"no Base64", "Base64", "utf8", "old", "old", false},
      {"中", "iso_8859_1", "utf8", "old", "old", false}, {"中", "GBK", "utf8", "old", "old", false},
      {"中", "GBK", "utf8", "\xFF", std::nullopt, false},
      // What was saved is no edit any more.
      {unusual, "utf8", "ISO_2022_JP", unusual, "key", false}, {unusual, "utf8", "ISO_2022_JP", "old", "key", true}};
  // clang-format on
  for (const Case& each : cases) {
    const StringInNewForm shown =
        stringInNewForm(each.shown, formNamed(each.oldForm), formNamed(each.newForm), each.value);
    EXPECT_EQ(shown.text, each.text) << each.shown << each.newForm;
    EXPECT_EQ(shown.isShownText, each.isShownText) << each.shown << each.newForm;
  }
}

}  // namespace
}  // namespace tarn::test
