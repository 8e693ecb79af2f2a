#include "workbench/TypedRow.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

using Outcome = CellRow::Outcome;

struct TakenCase {
  const char* typed;
  const char* title;
  bool translate;
  std::string text;
  Bytes bytes;
};

TEST(TypedRow, ACellTakesTextAndMarkedBase64) {
  for (const TakenCase& c : std::vector<TakenCase>{
           {"a\\nb", "utf8", true, "a\nb", "a\nb"_bytes},
           {"a\\nb", "utf8", false, "a\\nb", "a\\nb"_bytes},
           {"\\\\n", "utf8", true, "\\\n", "\\\n"_bytes},
           {"C:\\x", "utf8", true, "C:\\x", "C:\\x"_bytes},
           {"中", "GBK", true, "中", "\xD6\xD0"_bytes},
           {"", "utf8", true, "", ""_bytes},
           {"\\Bqw==", "GBK", true, "\\Bqw==", "\xAB"_bytes},
           {"\\Bqw==", "utf8", false, "\\Bqw==", "\xAB"_bytes},
           {"\\B", "utf8", true, "\\B", ""_bytes},
           {"ab", "Base64", true, "ab", ""_bytes},
           {"..qw==", "Base64", true, "..qw==", "\xAB"_bytes},
           {"中éqw==", "Base64", false, "中éqw==", "\xAB"_bytes},
       }) {
    const CellRow row = rowTypedInCell(c.typed, c.title, c.translate);
    ASSERT_EQ(row.outcome, Outcome::taken) << c.typed;
    EXPECT_EQ(row.text, c.text);
    EXPECT_EQ(row.bytes, c.bytes) << c.typed;
  }
  EXPECT_EQ(rowTypedInCell("\\Bqw==", "utf8", true).isBase64, std::optional(true));
  EXPECT_EQ(rowTypedInCell("text", "utf8", true).isBase64, std::nullopt);
}

TEST(TypedRow, ACellSaysWhyATextIsNoRow) {
  EXPECT_EQ(rowTypedInCell("中", "iso_8859_1", true).outcome, Outcome::noText);
  EXPECT_EQ(rowTypedInCell("\\Bqw=", "utf8", true).outcome, Outcome::noBase64);
  EXPECT_EQ(rowTypedInCell("é", "Base64", true).outcome, Outcome::tooShort);
  EXPECT_EQ(rowTypedInCell("", "Base64", true).outcome, Outcome::tooShort);
  EXPECT_EQ(rowTypedInCell("中é!", "Base64", true).outcome, Outcome::noBase64);
}

TEST(TypedRow, AnEditorTakesTextWithoutEscapes) {
  const auto typed = [](const char* text, const char* title) { return rowTypedInEditor(text, title, "\xAB"_bytes); };
  EXPECT_EQ(typed("a\\nb", "utf8").bytes, "a\\nb"_bytes);
  EXPECT_EQ(typed("中", "GBK").bytes, "\xD6\xD0"_bytes);
  EXPECT_EQ(typed("\\B/w==", "utf8").bytes, "\xFF"_bytes);
  EXPECT_EQ(typed("\\B/w==", "Base64").shown, (RowText{"\\B/w==", true}));
  EXPECT_EQ(typed("plain", "utf8").shown, (RowText{"plain", false}));
}

TEST(TypedRow, AnEditorLeavesTheBytesWhereATextStandsForNone) {
  const EditorRow refused = rowTypedInEditor("qw==", "Base64", "\xFF"_bytes);
  EXPECT_TRUE(refused.isRefused);
  EXPECT_EQ(refused.shown, (RowText{"\\B/w==", true}));
  EXPECT_EQ(refused.bytes, "\xFF"_bytes);

  const EditorRow noText = rowTypedInEditor("中", "iso_8859_1", "\xFF"_bytes);
  EXPECT_FALSE(noText.isRefused);
  EXPECT_EQ(noText.shown, (RowText{"ÿ", false}));
  EXPECT_EQ(rowTypedInEditor("\\B!", "utf8", "\xFF"_bytes).shown, (RowText{"\\B/w==", true}));
  EXPECT_EQ(rowTypedInEditor("\\B!", "Base64", "a"_bytes).shown, (RowText{"a", false}));
}

}  // namespace
}  // namespace tarn
