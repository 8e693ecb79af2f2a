#include "tests/workbench/TextForms.h"
#include "workbench/keys/KeyList.h"
#include "workbench/save/RowsToSave.h"
#include "workbench/value/DoubleClicks.h"
#include "workbench/value/ValueRows.h"

#include <gtest/gtest.h>

#include <vector>

namespace tarn::test {
namespace {

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
  ValueRows rows =
      rowsOf(ValueType::sortedSet, {"a"_bytes, "1"_bytes, "b"_bytes, "2"_bytes, "c"_bytes, "3"_bytes}, "Base64");
  rows.takeCellText(0, 0, "..YQ==", formNamed("Base64"));
  rows.takeCellText(0, 2, "..Yw==", formNamed("Base64"));
  const int revision = rows.revision();
  rows.insertRow(1);
  rows.insertRow(4);
  EXPECT_FALSE(rows.hasRow(-1) || rows.hasRow(5) || !rows.hasRow(4));
  rows.setScore(4, "5");
  EXPECT_EQ(textsOf(rows), (Strings{"..YQ==", "", "\\BYg==", "..Yw==", ""}));
  EXPECT_EQ(rows.scores(), (Strings{"1", "", "2", "3", "5"}));
  for (const std::size_t row : {0U, 0U, 2U})
    rows.removeRow(row);
  EXPECT_EQ(textsOf(rows), (Strings{"\\BYg==", "..Yw=="}));
  EXPECT_EQ(rows.columns()[0].data(), (Rows{"b"_bytes, "c"_bytes}));
  EXPECT_EQ(rows.scores(), (Strings{"2", "3"}));
  EXPECT_EQ(rows.revision(), revision + 5);
}

TEST(LoadedRows, PairFieldsWithValuesAndMembersWithScores) {
  const Rows reply{"a"_bytes, "1.50"_bytes, "bb"_bytes, "-inf"_bytes, "odd"_bytes};
  const LoadedRows hash = loadedRows(ValueType::hash, reply);
  EXPECT_EQ(hash.columns, (std::vector<Rows>{{"a"_bytes, "bb"_bytes}, {"1.50"_bytes, "-inf"_bytes}}));
  const LoadedRows scored = loadedRows(ValueType::sortedSet, reply);
  EXPECT_EQ(scored.columns, (std::vector<Rows>{{"a"_bytes, "bb"_bytes}}));
  EXPECT_EQ(scored.scores, (Strings{"1.50", "-inf"}));
  EXPECT_EQ((std::vector{hash.bytes, hash.count, scored.bytes, scored.count}),
            (std::vector<std::size_t>{11, 2, 11, 5}));
  const LoadedRows broken =
      loadedRows(ValueType::sortedSet, {"a"_bytes, "1"_bytes, "b"_bytes, "\xFF"_bytes, "c"_bytes, "3"_bytes});
  EXPECT_EQ(broken.columns.front(), Rows{"a"_bytes});
  EXPECT_TRUE(scored.isComplete && !broken.isComplete);
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
  const Rows rows{"plain"_bytes,    ""_bytes,     "\\Bqw=="_bytes,     "\\B!"_bytes,     "{\"a\\n\"}"_bytes,
                  "C:\\temp"_bytes, "\xFF"_bytes, "a\r\n\t\"\\"_bytes, "\\x \\\""_bytes, "\\\\server"_bytes};
  EXPECT_EQ(changes(rows, "utf8", "utf8+"), (Strings{"2\xABm", "4{\"a\n\"}e", "5C:\tempe", "9\\servere"}));
  EXPECT_EQ(changes(rows, "utf8", "utf8"), Strings{"2\xABm"});
  EXPECT_EQ(changes(rows, "Base64", "Base64+"), Strings());
  EXPECT_EQ(changes({"\x1B(Bkey"_bytes, "key"_bytes}, "ISO_2022_JP", "ISO_2022_JP+"), Strings{"0keyx"});
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

TEST(KeyList, GivesASavedKeyThePositionOfTheOldOne) {
  KeyList keys;
  keys.assign({"a"_bytes, "b"_bytes});
  EXPECT_EQ(keys.positionOfSavedKey(std::nullopt), 0U);
  EXPECT_EQ(keys.positionOfSavedKey("b"_bytes), 1U);
  EXPECT_EQ(keys.positionOfSavedKey("c"_bytes), 2U);
  keys.remove("c"_bytes);
  keys.remove("b"_bytes);
  keys.insert("c"_bytes, 5);
  keys.insert("b"_bytes, 1);
  keys.insert("a"_bytes, 2);
  EXPECT_EQ(keys.assign({}), (Rows{"a"_bytes, "b"_bytes, "c"_bytes}));
}

TEST(DoubleClicks, AreTwoOnOneRowWithinTheTime) {
  DoubleClicks clicks;
  for (const auto& [time, row, isDouble] : {std::tuple{1000.0, 0, false},
                                            {1001.1, 0, true},
                                            {1002.2, 0, true},
                                            {1003.5, 0, false},
                                            {1003.6, 4, false},
                                            {1003.7, 0, false},
                                            {1003.8, 0, true}})
    EXPECT_EQ(clicks.click(row, time), isDouble) << time;
}

}  // namespace
}  // namespace tarn::test
