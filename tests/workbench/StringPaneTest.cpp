#include "workbench/StringPane.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

using Text = std::optional<std::string>;

Text retitled(std::string_view shown, std::string_view oldTitle, std::string_view newTitle, std::string_view value) {
  return stringTextUnderNewTitle(shown, oldTitle, newTitle, value).text;
}

TEST(StringPane, ShowsBytesUnderATitle) {
  EXPECT_EQ(stringText("\xD6\xD0", "GBK"), Text("中"));
  EXPECT_EQ(stringText("\xD6\xD0", "utf8"), Text());
  EXPECT_EQ(stringText("\xD6\xD0", "Base64"), Text("1tA="));
  EXPECT_EQ(stringText("", "Base64"), Text(""));
}

TEST(StringPane, KeepsWhatWasTypedOverAChangeOfTitle) {
  EXPECT_EQ(retitled("中x", "GBK", "Base64", "old"), Text("1tB4"));
  EXPECT_EQ(retitled("1tB4", "Base64", "GBK", "old"), Text("中x"));
  EXPECT_EQ(retitled("é", "utf8", "iso_8859_1", "old"), Text("Ã©"));
}

// What was saved shows under a new title as what was loaded does: a save asks before it writes the usual form instead.
TEST(StringPane, TellsAnEditFromTheValue) {
  const std::string_view unusual = "\x1B(Bkey";
  EXPECT_FALSE(stringTextUnderNewTitle(unusual, "utf8", "ISO_2022_JP", unusual).isShownText);
  EXPECT_TRUE(stringTextUnderNewTitle(unusual, "utf8", "ISO_2022_JP", "old").isShownText);
}

TEST(StringPane, FallsBackOnTheValueAndThenOnNothing) {
  EXPECT_EQ(retitled("", "utf8", "GBK", "\xD6\xD0"), Text("中"));
  EXPECT_EQ(retitled("no Base64", "Base64", "utf8", "old"), Text("old"));
  EXPECT_EQ(retitled("中", "iso_8859_1", "utf8", "old"), Text("old"));
  EXPECT_EQ(retitled("中", "GBK", "utf8", "old"), Text("old"));
  EXPECT_EQ(retitled("1tA=", "Base64", "utf8", "old"), Text());
  EXPECT_EQ(retitled("中", "GBK", "utf8", "\xFF"), Text());
}

}  // namespace
}  // namespace tarn
