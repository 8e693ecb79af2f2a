#include "workbench/LoadedRows.h"
#include "workbench/ValueColumn.h"

#include <gtest/gtest.h>

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

TEST(ValueColumn, KeepsTheTextThatAHandGaveARowUntilTheTitleChanges) {
  ValueColumn column;
  column.assign({"a"_bytes, "b"_bytes}, "iso_8859_1");
  column.setRow(1, "\\Bqw==", "\xAB"_bytes, true);
  EXPECT_EQ(column.row(1), (RowText{"\\Bqw==", true}));
  EXPECT_EQ(column.data()[1], "\xAB"_bytes);
  column.setTitle("iso_8859_1");
  EXPECT_EQ(column.row(1), (RowText{"«", false}));

  column.setData(0, "\n"_bytes);
  EXPECT_EQ(column.row(0).text, "a");
  EXPECT_EQ(column.data()[0], "\n"_bytes);
  column.setRow(0, "\n", "\n"_bytes, false);
  EXPECT_EQ(column.row(0).text, "\n");
}

TEST(ValueColumn, TextsMoveWithTheirRows) {
  ValueColumn column;
  column.assign({"a"_bytes, "b"_bytes, "c"_bytes, "d"_bytes}, "Base64");
  column.setRow(1, "one", "b"_bytes, false);
  column.setRow(3, "three", "d"_bytes, false);
  column.insertRow(2);
  EXPECT_EQ(column.row(2), RowText());
  EXPECT_EQ(column.row(4).text, "three");
  column.insertRow(5);
  ASSERT_EQ(column.rowCount(), 6U);
  EXPECT_EQ(column.row(5), RowText());

  column.removeRows({0, 2, 5});
  EXPECT_EQ(column.data(), (std::vector{"b"_bytes, "c"_bytes, "d"_bytes}));
  EXPECT_EQ(column.row(0).text, "one");
  EXPECT_EQ(column.row(1).text, "\\BYw==");
  EXPECT_EQ(column.row(2).text, "three");
  column.removeRows({});
  column.removeRows({0, 1, 2});
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
