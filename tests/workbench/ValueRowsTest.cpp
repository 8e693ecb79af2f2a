#include "tests/workbench/TextForms.h"
#include "workbench/keys/KeyList.h"
#include "workbench/save/RowsToSave.h"
#include "workbench/value/DoubleClicks.h"
#include "workbench/value/ValueRows.h"

#include <gtest/gtest.h>

#include <vector>

namespace tarn::test {
namespace {

using Outcome = TypedCell::Outcome;
using Rows = std::vector<Bytes>;

ValueRows listOf(Rows elements, const char* form) {
  ValueRows rows(1, false);
  LoadedRows loaded = loadedRows(ValueType::list, std::move(elements));
  rows.exchange(loaded, formNamed(form));
  return rows;
}

std::vector<std::string> texts(const ValueRows& rows, std::size_t column = 0) {
  std::vector<std::string> result;
  for (std::size_t row = 0; row < rows.rowCount(); ++row)
    result.push_back(rows.columns()[column].text(row));
  return result;
}

using Strings = std::vector<std::string>;

TEST(ValueRows, ShowEachRowInTheFormAndFollowAnother) {
  ValueRows rows = listOf({"a\nb"_bytes, "\xD6\xD0"_bytes, ""_bytes}, "utf8");
  EXPECT_EQ(texts(rows), (Strings{"a\nb", "\\B1tA=", ""}));
  EXPECT_EQ(rows.takeCellText(0, 2, "\\Bqw==", formNamed("utf8+")), Outcome::taken);
  rows.setData(0, 0, "\n"_bytes);
  EXPECT_EQ(texts(rows), (Strings{"a\nb", "\\B1tA=", "\\Bqw=="}));
  EXPECT_EQ(rows.columns()[0].data(), (Rows{"\n"_bytes, "\xD6\xD0"_bytes, "\xAB"_bytes}));
  rows.setForm(formNamed("GBK"));
  EXPECT_EQ(texts(rows), (Strings{"\n", "中", "\\Bqw=="}));
  rows.setForm(formNamed("iso_8859_1"));
  EXPECT_EQ(texts(rows).back(), "«");
  EXPECT_TRUE(rows.hasRow(2));
  EXPECT_FALSE(rows.hasRow(3));
  EXPECT_FALSE(rows.hasRow(-1));

  LoadedRows none;
  rows.exchange(none, formNamed("utf8"));
  EXPECT_EQ(rows.rowCount(), 0U);
  EXPECT_EQ(none.columns.front().size(), 3U);
}

TEST(ValueRows, TakeWhatIsTypedUnlessItIsShownAnyway) {
  ValueRows rows = listOf({"a\nb"_bytes, "C:\\temp"_bytes}, "utf8");
  EXPECT_EQ(rows.takeCellText(0, 0, "a\\nb", formNamed("utf8+")), Outcome::unchanged);
  EXPECT_EQ(rows.takeCellText(0, 1, "C:\\temp", formNamed("utf8")), Outcome::unchanged);
  EXPECT_EQ(rows.takeCellText(0, 1, "\\B!", formNamed("utf8")), Outcome::noBase64);
  EXPECT_EQ(rows.takeEditorText(0, 0, "a\nb", formNamed("utf8")), ValueRows::EditorOutcome::unchanged);
  EXPECT_EQ(rows.takeEditorText(0, 0, "x", formNamed("Base64")), ValueRows::EditorOutcome::refused);
  EXPECT_EQ(texts(rows), (Strings{"\\BYQpi", "C:\\temp"}));
  EXPECT_EQ(rows.takeEditorText(0, 0, "c\\n", formNamed("utf8+")), ValueRows::EditorOutcome::taken);
  EXPECT_EQ(rows.takeCellText(0, 1, "C:\\temp", formNamed("utf8+")), Outcome::taken);
  EXPECT_EQ(rows.columns()[0].data(), (Rows{"c\\n"_bytes, "C:\temp"_bytes}));
}

TEST(ValueRows, TextsAndScoresMoveWithTheirRows) {
  ValueRows rows(1, true);
  LoadedRows loaded =
      loadedRows(ValueType::sortedSet, {"a"_bytes, "1"_bytes, "b"_bytes, "2"_bytes, "c"_bytes, "3"_bytes});
  rows.exchange(loaded, formNamed("Base64"));
  rows.takeCellText(0, 0, "..YQ==", formNamed("Base64"));
  rows.takeCellText(0, 2, "..Yw==", formNamed("Base64"));
  const int revision = rows.revision();
  rows.insertRow(1);
  rows.insertRow(4);
  rows.setScore(4, "5");
  EXPECT_EQ(texts(rows), (Strings{"..YQ==", "", "\\BYg==", "..Yw==", ""}));
  EXPECT_EQ(rows.scores(), (Strings{"1", "", "2", "3", "5"}));
  EXPECT_GT(rows.revision(), revision);
  for (const std::size_t row : {0U, 0U, 2U})
    rows.removeRow(row);
  EXPECT_EQ(texts(rows), (Strings{"\\BYg==", "..Yw=="}));
  EXPECT_EQ(rows.columns()[0].data(), (Rows{"b"_bytes, "c"_bytes}));
  EXPECT_EQ(rows.scores(), (Strings{"2", "3"}));
  EXPECT_EQ(rows.revision(), revision + 5);
}

TEST(LoadedRows, PairFieldsWithValuesAndMembersWithScores) {
  const LoadedRows hash = loadedRows(ValueType::hash, {"f1"_bytes, "v1"_bytes, "f2"_bytes, "value"_bytes, "odd"_bytes});
  EXPECT_EQ(hash.columns, (std::vector<Rows>{{"f1"_bytes, "f2"_bytes}, {"v1"_bytes, "value"_bytes}}));
  EXPECT_EQ(hash.bytes, 11U);
  EXPECT_EQ(hash.count, 2U);
  const LoadedRows scored =
      loadedRows(ValueType::sortedSet, {"a"_bytes, "1.50"_bytes, "\xFF"_bytes, "-inf"_bytes, "odd"_bytes});
  EXPECT_EQ(scored.columns, std::vector<Rows>({{"a"_bytes, "\xFF"_bytes}}));
  EXPECT_EQ(scored.scores, (Strings{"1.50", "-inf"}));
  EXPECT_EQ(scored.bytes, 10U);
  EXPECT_EQ(scored.count, 5U);
  EXPECT_TRUE(scored.isComplete);
  const LoadedRows broken =
      loadedRows(ValueType::sortedSet, {"a"_bytes, "1"_bytes, "b"_bytes, "\xFF"_bytes, "c"_bytes, "3"_bytes});
  EXPECT_FALSE(broken.isComplete);
  EXPECT_EQ(broken.columns.front(), Rows{"a"_bytes});
  EXPECT_EQ(broken.scores, Strings{"1"});
}

// Row, bytes and reason of each change.
Strings changes(ValueRows rows, const char* form) {
  Strings result;
  const RowsToSave saved(rows, formNamed(form));
  for (const ConvertedRow& change : saved.changes()) {
    result.push_back(std::to_string(change.row) + std::string(change.bytes.view()) + ' ' +
                     "mex"[static_cast<std::size_t>(change.reason)]);
  }
  return result;
}

TEST(RowsToSave, FindTheRowsWhoseBytesWouldChangeAndWhy) {
  const Rows rows{"plain"_bytes,    ""_bytes,     "\\Bqw=="_bytes,     "\\B!"_bytes,     "{\"a\\n\"}"_bytes,
                  "C:\\temp"_bytes, "\xFF"_bytes, "a\r\n\t\"\\"_bytes, "\\x \\\""_bytes, "\\\\server"_bytes};
  EXPECT_EQ(changes(listOf(rows, "utf8"), "utf8+"), (Strings{"2\xAB m", "4{\"a\n\"} e", "5C:\temp e", "9\\server e"}));
  EXPECT_EQ(changes(listOf(rows, "utf8"), "utf8"), Strings{"2\xAB m"});
  EXPECT_EQ(changes(listOf(rows, "Base64"), "Base64+"), Strings());
  EXPECT_EQ(changes(listOf({"\x1B(Bkey"_bytes, "key"_bytes}, "ISO_2022_JP"), "ISO_2022_JP+"), Strings{"0key x"});
  EXPECT_EQ(changes(listOf({"\xE9"_bytes}, "iso_8859_1"), "utf8"), Strings{"0é x"});
  ValueRows typed = listOf({"one"_bytes, "two"_bytes}, "utf8");
  typed.takeCellText(0, 1, "a\\tb", formNamed("utf8"));
  EXPECT_EQ(changes(typed, "utf8+"), Strings{"1a\tb e"});
}

TEST(RowsToSave, ConvertTheirCopyAndTheFormWhileItsRowsAreTheSame) {
  for (const bool isReplaced : {false, true}) {
    ValueRows rows = listOf({"\\Bqw=="_bytes, "b"_bytes}, "utf8");
    RowsToSave saved(rows, formNamed("utf8"));
    saved.takeCopy();
    if (isReplaced) rows.removeRow(1);
    saved.convert();
    EXPECT_EQ(saved.column(0), (Rows{"\xAB"_bytes, "b"_bytes}));
    EXPECT_EQ(saved.byteSize(), 2U);
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
  struct Click {
    double time;
    int row;
    bool isDouble;
  };
  DoubleClicks clicks;
  for (const Click& each : {Click{1000.0, 0, false},
                            {1001.1, 0, true},
                            {1002.2, 0, true},
                            {1003.5, 0, false},
                            {1003.6, 4, false},
                            {1003.7, 0, false},
                            {1003.8, 0, true}})
    EXPECT_EQ(clicks.click(each.row, each.time), each.isDouble) << each.time;
}

}  // namespace
}  // namespace tarn::test
