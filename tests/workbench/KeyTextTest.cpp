#include "workbench/KeyText.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(KeyText, ShowsEscapesAndFallsBackOnBase64) {
  EXPECT_EQ(keyDisplayText("a\\b", "utf8"), "a\\\\b");
  EXPECT_EQ(keyDisplayText("a\nb", "utf8"), "a\\nb");
  EXPECT_EQ(keyDisplayText("\xFF", "utf8"), "\\B/w==");
  EXPECT_EQ(keyDisplayText("\xD6\xD0", "GBK"), "中");
  EXPECT_EQ(keyDisplayText("a", "Base64"), "\\BYQ==");
  EXPECT_EQ(keyDisplayText("", "utf8"), "");
}

TEST(KeyText, ComesBackAsTheSameBytes) {
  for (const Bytes& key : {"plain"_bytes, "a\\nb\n\r\t\b\f\\"_bytes, "\xFF\x00"_bytes, "\xD6\xD0"_bytes, ""_bytes}) {
    for (const char* title : {"utf8", "GBK", "Base64", "utf16LittleEndian"}) {
      const TypedBytes back = keyDataFromText(keyDisplayText(key.view(), title), title, true);
      ASSERT_TRUE(back.hasValue()) << title << back.alert();
      EXPECT_EQ(back.value().view(), key.view()) << title;
    }
  }
}

TEST(KeyText, ReadsTheMarkerOnlyWhileEscapesAreOn) {
  EXPECT_EQ(keyDataFromText("\\B/w==", "utf8", true).value(), "\xFF"_bytes);
  EXPECT_EQ(keyDataFromText("\\B/w==", "utf8", false).value(), "\\B/w=="_bytes);
  EXPECT_EQ(keyDataFromText("a\\nb", "utf8", false).value(), "a\\nb"_bytes);
  EXPECT_EQ(keyDataFromText("/w==", "Base64", false).value(), "\xFF"_bytes);
  EXPECT_EQ(keyDataFromText("/w==", "Base64", true).value(), "\xFF"_bytes);
}

TEST(KeyText, SaysWhyATextHasNoBytes) {
  EXPECT_EQ(keyDataFromText("\\B/w=", "utf8", true).alert(), "Can not decode Base64 Key '\\B/w='");
  EXPECT_EQ(keyDataFromText("no!", "Base64", false).alert(), "Can not decode Base64 Key 'no!'");
  EXPECT_EQ(keyDataFromText("中{1}", "iso_8859_1", true).alert(),
            "Can not encode the Key '中{1}' to the charset 'iso_8859_1'");
}

TEST(KeyText, TranslatesForthAndBackButLosesTheMarker) {
  const std::string text = "a\\b\n\tz";
  EXPECT_EQ(keyTextTranslated(text, true), "a\\\\b\\n\\tz");
  EXPECT_EQ(keyTextTranslated(keyTextTranslated(text, true), false), text);
  EXPECT_EQ(keyTextTranslated("\\B/w==", false), "/w==");
}

}  // namespace
}  // namespace tarn
