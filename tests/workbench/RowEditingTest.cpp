#include "tests/workbench/RowsFixture.h"

#include <QTest>

namespace tarn::test {
namespace {

// One of the four columns of text.
struct Column {
  const char* name;
  const char* type;
  int tag;
  int column;
  ValueColumn TabState::*rows;
  NSTableView OperationTabLayout::*table;
  NSTextView OperationTabLayout::*editor;
};

const Column columns[] = {
    {"Element", "List", 2, 0, &TabState::setValue, &OperationTabLayout::valueDataSetTable,
     &OperationTabLayout::setValueTextView},
    {"Field", "Hash", 4, 0, &TabState::hashKey, &OperationTabLayout::valueDataHashTable,
     &OperationTabLayout::hashKeyTextView},
    {"Value", "Hash", 5, 1, &TabState::hashVal, &OperationTabLayout::valueDataHashTable,
     &OperationTabLayout::hashValueTextView},
    {"Member", "SortedSet", 6, 0, &TabState::sortedSetValue, &OperationTabLayout::valueDataSortedSetTable,
     &OperationTabLayout::sortedSetValueTextView},
};

class RowEditingOfColumn : public RowsFixture, public ::testing::WithParamInterface<Column> {
protected:
  void showRows(const Rows& bytes) {
    const Rows others(bytes.size(), "other"_bytes);
    const Column& column = GetParam();
    if (std::string_view(column.type) == "List") showList(bytes);
    if (std::string_view(column.type) == "Hash") {
      showHash(column.column == 0 ? bytes : others, column.column == 1 ? bytes : others);
    }
    if (std::string_view(column.type) == "SortedSet") showSortedSet(bytes, Texts(bytes.size(), "1"));
  }

  void open(int row) { openCell(table, row, GetParam().column); }
  void edit(int row, std::string_view text) {
    open(row);
    replaceText(text);
  }
  void editAndConfirm(int row, std::string_view text) {
    edit(row, text);
    press(Qt::Key_Return);
  }
  static void typeAndTakeBack() {
    press(Qt::Key_End);
    type("x");
    press(Qt::Key_Backspace);
  }
  void editBelow(int row, std::string_view text) {
    clickCell(table, row, GetParam().column);
    editor.becomeFirstResponder();
    replaceText(text);
    leave();
  }
  NSTableCellView& cellOf(int row) { return cell(table, row, GetParam().column); }

  ValueColumn& rows = state.*GetParam().rows;
  NSTableView& table = outlets.*GetParam().table;
  NSTextView& editor = outlets.*GetParam().editor;
};

TEST_P(RowEditingOfColumn, ADoubleClickOpensTheCellAndEnterCommitsIt) {
  showRows({"first"_bytes, "second"_bytes});
  EXPECT_FALSE(cellOf(1).isEditable());
  open(1);
  ASSERT_TRUE(editorOf(table));
  EXPECT_EQ(cellOf(1).tag(), GetParam().tag);
  EXPECT_EQ(cellOf(1).toolTip(), "Press Enter to confirm");
  EXPECT_EQ(state.currentDataRow, 1);
  replaceText("a\\nb");
  press(Qt::Key_Return);
  EXPECT_EQ(texts(rows), (Texts{"first", "a\nb"}));
  EXPECT_EQ(rows.data(), (Rows{"first"_bytes, "a\nb"_bytes}));
  EXPECT_EQ(cellOf(1).stringValue(), "a\\nb");
  EXPECT_EQ(cellOf(1).toolTip(), "a\nb");
  EXPECT_TRUE(cellOf(1).isEditable());
  EXPECT_EQ(editor.string(), "a\nb");
  EXPECT_EQ(alerts.messages(), Texts{});
}

TEST_P(RowEditingOfColumn, KeepsWhatIsTypedWhenTheFocusLeavesOrAnotherRowIsClicked) {
  showRows({"first"_bytes, "second"_bytes});
  edit(0, "left");
  leave();
  EXPECT_EQ(editor.string(), "left");
  edit(1, "clicked away");
  clickCell(table, 0, GetParam().column);
  EXPECT_EQ(rows.data(), (Rows{"left"_bytes, "clicked away"_bytes}));
  EXPECT_EQ(editor.string(), "left");
}

// Wrong Base64 is told, and only when the focus leaves.
TEST_P(RowEditingOfColumn, ATextThatStandsForNothingLeavesTheRowAsItWas) {
  outlets.popValueDataCharset.selectItemWithTitle("iso_8859_1");
  showRows({"a\nb"_bytes});
  const std::string what = GetParam().tag == 4 ? "Key" : "Value";
  const std::pair<const char*, Texts> cases[] = {{"中", {}},
                                                 {"\\Bqw=", {"Can not decode Base64 " + what + " '\\Bqw='"}}};
  for (const auto& [typed, told] : cases) {
    editAndConfirm(0, typed);
    EXPECT_EQ(cellOf(0).stringValue(), "a\\nb");
    EXPECT_EQ(alerts.messages(), Texts{});
    edit(0, typed);
    leave();
    EXPECT_EQ(alerts.messages(), told);
    EXPECT_EQ(cellOf(0).stringValue(), "a\\nb");
    EXPECT_EQ(texts(rows), Texts{"a\nb"});
    EXPECT_EQ(rows.data(), Rows{"a\nb"_bytes});
  }
}

TEST_P(RowEditingOfColumn, Base64IsBytesInAnyCharset) {
  outlets.popValueDataCharset.selectItemWithTitle("iso_8859_1");
  showRows({"old"_bytes});
  editAndConfirm(0, "\\Bqw==");
  EXPECT_EQ(rows.data()[0], "\xAB"_bytes);
  EXPECT_EQ(rows.row(0), (RowText{"\\Bqw==", true}));
  tab->tables.changeCharset(table);
  EXPECT_EQ(cellOf(0).stringValue(), "«");

  outlets.popValueDataCharset.selectItemWithTitle("Base64");
  showRows({"old"_bytes, "kept"_bytes});
  editAndConfirm(0, "ab");
  EXPECT_EQ(rows.data()[0], ""_bytes);
  EXPECT_EQ(rows.row(0).text, "ab");

  editAndConfirm(1, "a");
  EXPECT_EQ(cellOf(1).stringValue(), "");
  EXPECT_EQ(rows.data()[1], "kept"_bytes);
  tab->editing.commitAllEditableCells();
  EXPECT_EQ(rows.data()[1], ""_bytes);
  EXPECT_EQ(rows.row(1), (RowText{"", true}));
}

// Each of these rows would be other bytes if its text were read again.
TEST_P(RowEditingOfColumn, ACellThatNoHandChangedCommitsNothing) {
  outlets.popValueDataCharset.selectItemWithTitle("ISO_2022_JP");
  const Rows before{"C:\\temp"_bytes, "{\"a\":\"x\\ny\"}"_bytes, "\x1B(Busual?"_bytes, "\\Bqw=="_bytes};
  showRows(before);
  for (int row = 0; row < 4; ++row) {
    open(row);
    ASSERT_TRUE(editorOf(table));
    press(Qt::Key_Return);
    open(row);
    leave();
    open(row);
    type("x");
    press(Qt::Key_Escape);
    open(row);
    typeAndTakeBack();
    press(Qt::Key_Return);
    open(row);
    typeAndTakeBack();
    leave();
    editor.becomeFirstResponder();
    typeAndTakeBack();
    leave();
  }
  tab->editing.commitAllEditableCells();
  EXPECT_EQ(rows.data(), before);
  EXPECT_EQ(alerts.messages(), Texts{});
}

TEST_P(RowEditingOfColumn, AnEndedEditLapsesWhenTheRowsWereRebuilt) {
  showRows({"a"_bytes, "b"_bytes});
  edit(1, "typed");
  tab->queue.poster().post([&] {
    tab->tables.setRows(rows, {"new a"_bytes, "new b"_bytes});
    table.reloadData();
  });
  QTest::keyClick(editorOf(table), Qt::Key_Return);
  settle();
  EXPECT_EQ(rows.data(), (Rows{"new a"_bytes, "new b"_bytes}));
  EXPECT_EQ(cellOf(1).stringValue(), "new b");
}

TEST_P(RowEditingOfColumn, TheEditorChangesTheSelectedRow) {
  showRows({"a"_bytes, "b"_bytes});
  editor.becomeFirstResponder();
  type("nowhere");
  leave();
  EXPECT_EQ(rows.data(), (Rows{"a"_bytes, "b"_bytes}));
  EXPECT_EQ(state.currentDataRow, -1);

  editBelow(1, "x\\ny");
  EXPECT_EQ(rows.data(), (Rows{"a"_bytes, "x\\ny"_bytes}));
  EXPECT_EQ(cellOf(1).stringValue(), "x\\\\ny");
  editBelow(0, "\\Bqw==");
  EXPECT_EQ(rows.data()[0], "\xAB"_bytes);
  EXPECT_EQ(cellOf(0).stringValue(), "\\Bqw==");

  clickCell(table, 1, GetParam().column);
  editor.becomeFirstResponder();
  replaceText("clicked away");
  clickCell(table, 0, GetParam().column);
  EXPECT_EQ(rows.data()[1], "clicked away"_bytes);
  EXPECT_EQ(editor.string(), "\\Bqw==");
}

TEST_P(RowEditingOfColumn, AnEditorWhoseTextStandsForNothingKeepsIt) {
  struct Case {
    const char* title;
    const char* typed;
    const char* shown;
  };
  showRows({"old"_bytes});
  for (const auto& [title, typed, shown] :
       {Case{"iso_8859_1", "中", "中"}, Case{"iso_8859_1", "\\B!", "\\B!"}, Case{"Base64", "qw==", "\\Bb2xk"}}) {
    outlets.popValueDataCharset.selectItemWithTitle(title);
    editBelow(0, typed);
    EXPECT_EQ(editor.string(), shown);
    EXPECT_EQ(rows.data(), Rows{"old"_bytes});
    EXPECT_EQ(alerts.messages(), Texts{});
  }
}

INSTANTIATE_TEST_SUITE_P(, RowEditingOfColumn, ::testing::ValuesIn(columns),
                         [](const ::testing::TestParamInfo<Column>& column) { return column.param.name; });

class RowEditingTest : public RowsFixture {};

TEST_F(RowEditingTest, ADoubleClickClosesTheOtherRowsOfAListOnly) {
  showList({"a"_bytes, "b"_bytes});
  openCell(setTable, 0, 0);
  openCell(setTable, 1, 0);
  EXPECT_FALSE(cell(setTable, 0, 0).isEditable());
  EXPECT_TRUE(cell(setTable, 1, 0).isEditable());

  showHash({"f"_bytes, "g"_bytes}, {"v"_bytes, "w"_bytes});
  openCell(hashTable, 0, 1);
  openCell(hashTable, 1, 0);
  for (const int row : {0, 1}) {
    EXPECT_TRUE(cell(hashTable, row, 0).isEditable());
    EXPECT_TRUE(cell(hashTable, row, 1).isEditable());
  }
  clickCell(hashTable, 0, 1);
  ASSERT_TRUE(editorOf(hashTable));
  EXPECT_EQ(editorOf(hashTable)->utf8(), "v");
}

TEST_F(RowEditingTest, TheTimerTakesNoKeyboardFromAnotherControl) {
  showList({"a"_bytes});
  openCell(setTable, 0, 0);
  outlets.txtKey.becomeFirstResponder();
  QTest::qWait(150);
  EXPECT_TRUE(outlets.txtKey.isFirstResponder());
  EXPECT_FALSE(editorOf(setTable));
}

TEST_F(RowEditingTest, KeysGoThroughTheCells) {
  showHash({"f"_bytes, "g"_bytes}, {"v"_bytes, "w"_bytes});
  clickCell(hashTable, 0, 0);
  press(Qt::Key_F2);
  replaceText("F");
  press(Qt::Key_Tab);
  replaceText("V");
  press(Qt::Key_Tab);
  EXPECT_EQ(hashTable.selectedRow(), 1);
  replaceText("dropped");
  press(Qt::Key_Escape);
  EXPECT_EQ(cell(hashTable, 1, 0).stringValue(), "g");
  press(Qt::Key_Return);
  ASSERT_TRUE(editorOf(hashTable));
  replaceText("G");
  press(Qt::Key_Return);
  EXPECT_EQ(texts(state.hashKey), (Texts{"F", "G"}));
  EXPECT_EQ(texts(state.hashVal), (Texts{"V", "w"}));
  EXPECT_EQ(outlets.hashKeyTextView.string(), "G");
}

TEST_F(RowEditingTest, AScoreOpensAtOnceAndStaysAsTheServerWroteIt) {
  const Texts scores{"inf", "1e+20", "0.30000000000000004"};
  showSortedSet({"a"_bytes, "b"_bytes, "c"_bytes}, scores);
  for (int row = 0; row < 3; ++row) {
    clickCell(sortedSetTable, row, 1);
    ASSERT_TRUE(editorOf(sortedSetTable));
    type("x");
    press(Qt::Key_Return);
  }
  tab->editing.commitAllEditableCells();
  outlets.sortedSetScoreTextField.becomeFirstResponder();
  leave();
  EXPECT_EQ(state.sortedSetScore, scores);

  clickCell(sortedSetTable, 0, 1);
  replaceText("-2x.5");
  press(Qt::Key_Return);
  EXPECT_EQ(state.sortedSetScore[0], "-2.5");
  EXPECT_EQ(outlets.sortedSetScoreTextField.stringValue(), "-2.5");
}

TEST_F(RowEditingTest, TheScoreEditorChangesTheRowThatItShowed) {
  showSortedSet({"a"_bytes, "b"_bytes}, {"1", "2"});
  clickCell(sortedSetTable, 1, 0);
  outlets.sortedSetScoreTextField.becomeFirstResponder();
  replaceText("7");
  clickCell(sortedSetTable, 0, 0);
  EXPECT_EQ(state.sortedSetScore, (Texts{"1", "7"}));
  EXPECT_EQ(cell(sortedSetTable, 1, 1).stringValue(), "7");

  outlets.sortedSetScoreTextField.becomeFirstResponder();
  replaceText("-");
  leave();
  EXPECT_EQ(state.sortedSetScore, (Texts{"1", "7"}));
  EXPECT_EQ(outlets.sortedSetScoreTextField.stringValue(), "-");

  // As a save does, which reads the rows before anything that was posted.
  outlets.sortedSetScoreTextField.becomeFirstResponder();
  replaceText("8");
  outlets.txtKey.becomeFirstResponder();
  tab->editing.commitAllEditableCells();
  EXPECT_EQ(state.sortedSetScore, (Texts{"8", "7"}));
}

TEST_F(RowEditingTest, TheSweepTakesWhatIsTypedAndGoesOnOverRowsThatChangeBehindAnAlert) {
  showSortedSet({"a"_bytes, "b"_bytes}, {"1", "2"});
  openCell(sortedSetTable, 0, 0);
  replaceText("A");
  tab->editing.commitAllEditableCells();
  EXPECT_EQ(texts(state.sortedSetValue), (Texts{"A", "b"}));
  clickCell(sortedSetTable, 1, 1);
  replaceText("3");
  tab->editing.commitAllEditableCells();
  EXPECT_EQ(state.sortedSetScore, (Texts{"1", "3"}));

  showHash({"f"_bytes, "g"_bytes}, {"v"_bytes, "w"_bytes});
  openCell(hashTable, 1, 0);
  replaceText("\\B!");
  alerts.whileNextIsUp([this] { showHash({"one"_bytes}, {"row"_bytes}); });
  tab->editing.commitAllEditableCells();
  EXPECT_EQ(alerts.messages(), (Texts{"Can not decode Base64 Key '\\B!'"}));
  EXPECT_EQ(state.hashKey.data(), (Rows{"one"_bytes}));
}

}  // namespace
}  // namespace tarn::test
