#include "tests/workbench/TextForms.h"
#include "workbench/text/TypedText.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace tarn::test {
namespace {

using Text = std::optional<std::string>;

// What became of a typed text: its bytes, or its alert.
std::string outcome(const BytesOrAlert& typed) {
  return typed.hasValue() ? std::string(typed.value().view()) : "! " + typed.alert();
}

TEST(TextForm, NamesTheCharacterSetsWithBase64AsTheSecond) {
  EXPECT_EQ(textFormNames().size(), 47U);
  for (const std::string& name : textFormNames())
    EXPECT_EQ(formNamed(name).name(), name);
  EXPECT_EQ(textFormNames()[1], "Base64");
  EXPECT_EQ(textFormAt(-1, true), formNamed("utf8+"));
}

TEST(TypedText, ReadsAKeyAsTheFormSays) {
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
  for (const Bytes& key : {"a\\nb\n\r\t\b\f\\"_bytes, "\xFF\x00"_bytes, "\xD6\xD0"_bytes, ""_bytes}) {
    for (const char* form : {"utf8+", "GBK+", "Base64+", "utf16LittleEndian+"})
      EXPECT_EQ(outcome(keyFromText(keyText(key.view(), formNamed(form)), formNamed(form))), key.view()) << form;
  }
  EXPECT_EQ(keyTextTranslated("a\\b\n\tz", true), "a\\\\b\\n\\tz");
  EXPECT_EQ(keyTextTranslated("a\\\\b\\n\\tz", false), "a\\b\n\tz");
  EXPECT_EQ(keyTextTranslated("\\B/w==", false), "/w==");
}

TEST(TypedText, MakesAPatternOfASearchText) {
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
      {"\\B*", "Base64", part, "! Can not decode base64 part of the Search Key '\\B*'"}};
  // clang-format on
  for (const auto& [text, form, match, expected] : cases)
    EXPECT_EQ(outcome(searchPattern(text, formNamed(form), match)), expected) << text;
}

TEST(TypedText, ReadsAStringAsItStandsAndKeepsWhatWasTypedOverAChangeOfForm) {
  EXPECT_EQ(outcome(stringFromText("a\\n\\Bqw==", formNamed("utf8+"))), "a\\n\\Bqw==");
  EXPECT_EQ(outcome(stringFromText("x", formNamed("Base64"))),
            "! Can not decode Base64 Value Data, Please Check your Base64 Value Data if is available.");
  EXPECT_EQ(
      outcome(stringFromText("中", formNamed("KOI8_R"))),
      "! Can not encode the value to Value Data, Please change Value Data's charset besides the 'Reload' button.");
  const char* const unusual = "\x1B(Bkey";
  // clang-format off
  // The text shown, its form and the new one, the value; the text in the new form, and whether it is what was shown.
  const std::vector<std::tuple<const char*, const char*, const char*, const char*, Text, bool>> cases{
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

}  // namespace
}  // namespace tarn::test
