#include <gtest/gtest.h>

#include "workbench/LoadedRows.h"
#include "workbench/ValueColumn.h"

namespace tarn {
namespace {

TEST(ValueColumn, ShowsEachRowUnderTheTitleAndFollowsAnother) {
  ValueColumn column;
  column.assign({"a\nb"_bytes, "\xD6\xD0"_bytes, ""_bytes}, "utf8");
  ASSERT_EQ(column.rowCount(), 3U);
  EXPECT_EQ(column.row(0).text, "a\nb");
  EXPECT_FALSE(column.row(0).isBase64);
  EXPECT_EQ(column.row(1).text, "\\B1tA=");
  EXPECT_TRUE(column.row(1).isBase64);
  EXPECT_EQ(column.row(2).text, "");

  column.setTitle("GBK");
  EXPECT_EQ(column.row(1).text, "中");
  column.setTitle("Base64");
  EXPECT_EQ(column.row(2).text, "\\B");
  EXPECT_TRUE(column.row(2).isBase64);

  EXPECT_EQ(column.assign({}, "utf8").size(), 3U);
  EXPECT_EQ(column.rowCount(), 0U);
}

TEST(LoadedRows, PairsFieldsWithValues) {
  const HashRows rows = hashRows({"f1"_bytes, "v1"_bytes, "f2"_bytes, "long value"_bytes, "odd"_bytes});
  EXPECT_EQ(rows.fields, (std::vector{"f1"_bytes, "f2"_bytes}));
  EXPECT_EQ(rows.values, (std::vector{"v1"_bytes, "long value"_bytes}));
  EXPECT_EQ(rows.bytes, 16U);
}

TEST(LoadedRows, PairsMembersWithScoresAsTheServerWroteThem) {
  const SortedSetRows rows = sortedSetRows({"a"_bytes, "1.50"_bytes, "\xFF"_bytes, "-inf"_bytes, "odd"_bytes});
  EXPECT_EQ(rows.members, (std::vector{"a"_bytes, "\xFF"_bytes}));
  EXPECT_EQ(rows.scores, (std::vector<std::string>{"1.50", "-inf"}));
  EXPECT_EQ(rows.bytes, 10U);
  EXPECT_EQ(rows.elements, 5U);
  EXPECT_TRUE(rows.complete);

  const SortedSetRows broken = sortedSetRows({"a"_bytes, "1"_bytes, "b"_bytes, "\xFF"_bytes, "c"_bytes, "3"_bytes});
  EXPECT_FALSE(broken.complete);
  EXPECT_EQ(broken.members.size(), 1U);
  EXPECT_EQ(broken.scores.size(), 1U);
}

}  // namespace
}  // namespace tarn
