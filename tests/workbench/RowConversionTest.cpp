#include "workbench/KeyPlace.h"
#include "workbench/RowConversion.h"
#include "workbench/SaveQuestions.h"
#include "workbench/SaveValidation.h"

#include <gtest/gtest.h>

namespace tarn::test {
namespace {

using Changed = std::optional<Bytes>;

TEST(RowConversion, FollowsTheMarkerTheEscapesAndTheCharset) {
  EXPECT_EQ(convertedRow("\\Bqw==", "utf8", true), Changed("\xAB"_bytes));
  EXPECT_EQ(convertedRow("\\Babc", "utf8", true), Changed());
  EXPECT_EQ(convertedRow("\\Bqw==", "Base64", false), Changed("\xAB"_bytes));
  EXPECT_EQ(convertedRow("qw==", "Base64", true), Changed("\xAB"_bytes));
  EXPECT_EQ(convertedRow("a\\nb", "utf8", true), Changed("a\nb"_bytes));
  EXPECT_EQ(convertedRow("a\\nb", "utf8", false), Changed("a\\nb"_bytes));
  EXPECT_EQ(convertedRow("\\\\n", "utf8", true), Changed("\\\n"_bytes));
  EXPECT_EQ(convertedRow("中", "GBK", true), Changed("\xD6\xD0"_bytes));
  EXPECT_EQ(convertedRow("中", "iso_8859_1", true), Changed());
}

std::vector<std::pair<std::size_t, Bytes>> changes(std::vector<Bytes> rows, std::string_view title, bool translate) {
  ValueColumn column;
  column.assign(std::move(rows), title);
  std::vector<std::pair<std::size_t, Bytes>> result;
  for (const ConvertedRow& each : rowsChangedByConversion(column, title, translate))
    result.emplace_back(each.row, each.bytes);
  return result;
}

TEST(RowConversion, FindsTheRowsWhoseBytesWouldChange) {
  const std::vector<Bytes> rows{"plain"_bytes,      ""_bytes,          "\\Bqw=="_bytes, "\\B!"_bytes,
                                "{\"a\\n\"}"_bytes, "C:\\temp"_bytes,  "\xFF"_bytes,    "a\r\n\t\"\\"_bytes,
                                "\\x \\\""_bytes,   "\\\\server"_bytes};
  using Rows = std::vector<std::pair<std::size_t, Bytes>>;
  EXPECT_EQ(changes(rows, "utf8", true),
            (Rows{{2, "\xAB"_bytes}, {4, "{\"a\n\"}"_bytes}, {5, "C:\temp"_bytes}, {9, "\\server"_bytes}}));
  EXPECT_EQ(changes(rows, "utf8", false), (Rows{{2, "\xAB"_bytes}}));
  EXPECT_EQ(changes(rows, "Base64", true), Rows());
  EXPECT_EQ(changes({"\x1B(Bkey"_bytes, "key"_bytes}, "ISO_2022_JP", true), (Rows{{0, "key"_bytes}}));
  EXPECT_EQ(changes({"a"_bytes, "\xFF\xFE\x61\0"_bytes}, "utf16", true), (Rows{}));
  EXPECT_EQ(changes({"\0a"_bytes}, "utf16", true), (Rows{{0, "\xFF\xFE\x61\0"_bytes}}));
}

TEST(RowConversion, TakesTheTextThatAHandSet) {
  ValueColumn column;
  column.assign({"one"_bytes, "two"_bytes}, "utf8");
  column.setRow(1, "a\\tb", "a\\tb"_bytes, false);
  const auto changed = rowsChangedByConversion(column, "utf8", true);
  ASSERT_EQ(changed.size(), 1U);
  EXPECT_EQ(changed[0].row, 1U);
  EXPECT_EQ(changed[0].reason, ConversionReason::escapes);
}

TEST(RowConversion, CountsARowOfTwoColumnsOnce) {
  const std::vector<ConvertedRow> fields{{1, {}, ConversionReason::marker}, {3, {}, ConversionReason::escapes}};
  const std::vector<ConvertedRow> values{{1, {}, ConversionReason::escapes}, {2, {}, ConversionReason::unusualForm}};
  const ChangedRows changed = changedRows({&fields, &values});
  EXPECT_EQ(changed.rows, 3U);
  EXPECT_EQ(changed.markers, 1U);
  EXPECT_EQ(changed.escapes, 2U);
  EXPECT_EQ(changed.unusualForms, 1U);
}

TEST(SaveValidation, ReadsATtl) {
  for (const char* text : {"", "-", "0", "-0", "-2", "1.5", "x", "9223372036854775808"})
    EXPECT_EQ(ttlFromText(text), std::nullopt) << text;
  EXPECT_EQ(ttlFromText("-1"), -1);
  EXPECT_EQ(ttlFromText("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
}

TEST(SaveValidation, ReadsAStringAsItStands) {
  EXPECT_EQ(stringDataFromText("a\\n\\Bqw==", "utf8").value(), "a\\n\\Bqw=="_bytes);
  EXPECT_EQ(stringDataFromText("1tA=", "Base64").value(), "\xD6\xD0"_bytes);
  EXPECT_EQ(stringDataFromText("x", "Base64").alert(),
            "Can not decode Base64 Value Data, Please Check your Base64 Value Data if is available.");
  EXPECT_EQ(stringDataFromText("中", "KOI8_R").alert(),
            "Can not encode the value to Value Data, Please change Value Data's charset besides the 'Reload' button.");
}

TEST(KeyPlace, FollowsTheOldKey) {
  std::vector<Bytes> keys{"a"_bytes, "b"_bytes};
  EXPECT_EQ(placeOfSavedKey(keys, std::nullopt), 0U);
  EXPECT_EQ(placeOfSavedKey(keys, "b"_bytes), 1U);
  EXPECT_EQ(placeOfSavedKey(keys, "c"_bytes), 2U);
  removeKey(keys, "c"_bytes);
  removeKey(keys, "b"_bytes);
  insertKey(keys, "c"_bytes, 5);
  insertKey(keys, "b"_bytes, 1);
  insertKey(keys, "a"_bytes, 2);
  EXPECT_EQ(keys, (std::vector<Bytes>{"a"_bytes, "b"_bytes, "c"_bytes}));
}

}  // namespace
}  // namespace tarn::test
