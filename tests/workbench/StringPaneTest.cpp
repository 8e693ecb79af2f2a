#include "workbench/StringPane.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

using Text = std::optional<std::string>;

TEST(StringPane, ShowsBytesUnderATitle) {
  EXPECT_EQ(stringText("\xD6\xD0", "GBK"), Text("中"));
  EXPECT_EQ(stringText("\xD6\xD0", "utf8"), Text());
  EXPECT_EQ(stringText("\xD6\xD0", "Base64"), Text("1tA="));
  EXPECT_EQ(stringText("", "Base64"), Text(""));
}

TEST(StringPane, KeepsWhatWasTypedOverAChangeOfTitle) {
  EXPECT_EQ(stringTextUnderNewTitle("中x", "GBK", "Base64", "old"), Text("1tB4"));
  EXPECT_EQ(stringTextUnderNewTitle("1tB4", "Base64", "GBK", "old"), Text("中x"));
  EXPECT_EQ(stringTextUnderNewTitle("é", "utf8", "iso_8859_1", "old"), Text("Ã©"));
}

TEST(StringPane, FallsBackOnTheValueAndThenOnNothing) {
  EXPECT_EQ(stringTextUnderNewTitle("", "utf8", "GBK", "\xD6\xD0"), Text("中"));
  EXPECT_EQ(stringTextUnderNewTitle("no Base64", "Base64", "utf8", "old"), Text("old"));
  EXPECT_EQ(stringTextUnderNewTitle("中", "iso_8859_1", "utf8", "old"), Text("old"));
  EXPECT_EQ(stringTextUnderNewTitle("中", "GBK", "utf8", "old"), Text("old"));
  EXPECT_EQ(stringTextUnderNewTitle("1tA=", "Base64", "utf8", "old"), Text());
  EXPECT_EQ(stringTextUnderNewTitle("中", "GBK", "utf8", "\xFF"), Text());
}

}  // namespace
}  // namespace tarn
