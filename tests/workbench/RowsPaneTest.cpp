#include "platform/appkit/table/TableViewWidget.h"
#include "platform/foundation/NSTimer.h"
#include "tests/workbench/TabFixture.h"
#include "workbench/value/ValuePanes.h"

#include <QTest>

namespace tarn::test {
namespace {

class RowsPaneTest : public ::testing::Test {
protected:
  using enum ValueType;

  struct Tab {
    WorkbenchTab shared;
    ValuePanes panes{shared};
  };

  RowsPaneTest() {
    tab->shared.queue.setTab(tab);
    outlets.chkTranslate.setState(true);
    show(*outlets.view.widget(), {900, 900});
  }

  // Elements; fields and values in turn; members and scores in turn.
  void showRows(ValueType type, std::vector<Bytes> reply) {
    pane = tab->panes.rowsOf(type);
    std::tie(table, editors) = std::map<ValueType, std::pair<NSTableView*, std::array<NSView*, 2>>>{
        {list, {&outlets.valueDataSetTable, {&outlets.setValueTextView, nullptr}}},
        {hash, {&outlets.valueDataHashTable, {&outlets.hashKeyTextView, &outlets.hashValueTextView}}},
        {sortedSet,
         {&outlets.valueDataSortedSetTable,
          {&outlets.sortedSetValueTextView, &outlets.sortedSetScoreTextField}}}}[type];
    alerts.clear();
    tab->panes.show(type);
    tab->panes.doResize();
    pane->empty();
    table->deselectAll();
    pane->setRows(loadedRows(type, std::move(reply)));
    pane->reload();
    settle();
  }

  // Steps with "; " between them: a key, or a word and what it is done to; "C" is the column under test.
  void run(const std::string& script) {
    forEachStep(script, "; ", [this](const std::string& word, const std::string& rest) {
      const auto number = [&](std::size_t at) { return rest[at] == 'C' ? column : rest[at] - '0'; };
      const auto* const cells = dynamic_cast<TableViewWidget*>(table->widget());
      const auto cell = [&] { return cells->cellRect(number(0), number(2)).center(); };
      if (word == "click") click(*cells->viewport(), cell());
      if (word == "open") doubleClick(*cells->viewport(), cell());
      if (word == "select") table->selectRow(number(0)), table->becomeFirstResponder();
      if (word == "edit") editors.at(static_cast<std::size_t>(number(0)))->becomeFirstResponder();
      if (word == "type") type(rest);
      if (word == "replace") replaceText(rest);
      if (word == "add") click(outlets.btnAddRow);
      if (word == "delete") click(outlets.btnDeleteSelectedRows);
      if (word == "sweep") tab->panes.commitCells();
      // A save reads the rows before anything that was posted.
      if (word == "focus" || word == "leave") outlets.txtKey.becomeFirstResponder();
      if (word == "leave") settle();
      if (std::isupper(word[0])) keys(word.c_str());
    });
  }

  std::string bytes(int column) {
    Texts result;
    for (const Bytes& row : pane->rows().columns()[static_cast<std::size_t>(column)].data())
      result.emplace_back(row.view());
    return joined(result);
  }
  std::string editorText(int column) {
    const auto* const view = dynamic_cast<NSTextView*>(editors.at(static_cast<std::size_t>(column)));
    return view ? view->string() : outlets.sortedSetScoreTextField.stringValue();
  }
  NSTableCellView& cell(int row, int column) { return *table->viewAtColumn(column, row, true); }
  // The text field of the open cell, or null.
  QWidget* openField() {
    QWidget* const focused = QApplication::focusWidget();
    return focused != table->widget() && table->widget()->isAncestorOf(focused) ? focused : nullptr;
  }
  static void waitForATimer() {
    bool hasFired = false;
    NSTimer::scheduledTimerWithTimeInterval(0.1, false, [&] { hasFired = true; });
    ASSERT_TRUE(waitUntil([&] { return hasFired; }));
    settle();
  }

  AlertRecorder alerts;
  std::shared_ptr<Tab> tab = std::make_shared<Tab>();
  OperationTabLayout& outlets = tab->shared.outlets;
  RowsPane* pane = nullptr;
  NSTableView* table = nullptr;
  std::array<NSView*, 2> editors{};
  int column = 0;
};

using Column = std::pair<ValueType, int>;
const std::vector<Column> columns{
    {ValueType::list, 0}, {ValueType::hash, 0}, {ValueType::hash, 1}, {ValueType::sortedSet, 0}};

class RowsPaneOfColumn : public RowsPaneTest, public ::testing::WithParamInterface<Column> {
protected:
  RowsPaneOfColumn() { column = GetParam().second; }

  void showColumn(const std::vector<Bytes>& rows) {
    std::vector<Bytes> reply;
    for (const Bytes& row : rows) {
      if (column == 1) reply.push_back("other"_bytes);
      reply.push_back(row);
      if (GetParam().first != list && column == 0) reply.push_back("1"_bytes);
    }
    showRows(GetParam().first, std::move(reply));
  }
};

TEST_P(RowsPaneOfColumn, TakesWhatIsTypedInItsCellsAndItsEditor) {
  showColumn({"a\tb"_bytes});
  run("open 0 C");
  EXPECT_EQ(cell(0, column).toolTip(), "Press Enter to confirm");
  run("replace x\\ty; Return");
  EXPECT_EQ(cell(0, column).toolTip(), "x\ty");
  const bool isField = GetParam() == columns[1];
  const std::string alert = std::string("Can not decode Base64 ") + (isField ? "Key" : "Value") + " '\\Bqw='";
  // clang-format off
  // Form, script; bytes, cells, editor, alerts.
  const std::vector<std::tuple<const char*, const char*, std::string, const char*, const char*, Texts>> cases{
      // Cells, which say what is wrong only when the focus leaves.
      {"utf8", "open 1 C; replace x\\ny; Return", "a\nb|x\ny", "a\\nb|x\\ny", "x\ny", {}},
      {"utf8", "open 0 C; replace left; leave", "left|second", "left|second", "left", {}},
      {"utf8", "open 1 C; replace away; click 0 C", "a\nb|away", "a\\nb|away", "a\nb", {}},
      {"utf8", "open 1 C; replace A; sweep", "a\nb|A", "a\\nb|A", "second", {}},
      {"iso_8859_1", "open 0 C; replace 中; Return", "a\nb|second", "a\\nb|second", "a\nb", {}},
      {"iso_8859_1", "open 0 C; replace 中; leave", "a\nb|second", "a\\nb|second", "a\nb", {}},
      {"iso_8859_1", "open 0 C; replace \\Bqw=; Return", "a\nb|second", "a\\nb|second", "a\nb", {}},
      {"iso_8859_1", "open 0 C; replace \\Bqw=; leave", "a\nb|second", "a\\nb|second", "a\nb", {alert}},
      {"iso_8859_1", "open 0 C; replace \\Bqw==; Return", "\xAB|second", "\\Bqw==|second", "\\Bqw==", {}},
      {"Base64", "open 0 C; replace a; Return", "a\nb|second", "|\\Bc2Vjb25k", "\\BYQpi", {}},
      {"Base64", "open 0 C; replace a; Return; sweep", "|second", "|\\Bc2Vjb25k", "\\BYQpi", {}},
      // The editor, which never does.
      {"utf8", "edit C; type nowhere; leave", "a\nb|second", "a\\nb|second", "nowhere", {}},
      {"utf8", "click 1 C; edit C; replace x\\ny; leave", "a\nb|x\\ny", "a\\nb|x\\\\ny", "x\\ny", {}},
      {"utf8", "click 1 C; edit C; replace away; click 0 C", "a\nb|away", "a\\nb|away", "a\nb", {}},
      {"iso_8859_1", "click 0 C; edit C; replace 中; leave", "a\nb|second", "a\\nb|second", "中", {}},
      {"Base64", "click 1 C; edit C; replace qw==; leave", "a\nb|second", "\\BYQpi|\\Bc2Vjb25k", "\\Bc2Vjb25k", {}}};
  // clang-format on
  for (const auto& [form, script, stored, cells, edited, shown] : cases) {
    SCOPED_TRACE(script);
    outlets.popValueDataCharset.selectItemWithTitle(form);
    showColumn({"a\nb"_bytes, "second"_bytes});
    run(script);
    EXPECT_EQ(bytes(column), stored);
    EXPECT_EQ(joined(texts(*table, column)), cells);
    EXPECT_EQ(editorText(column), edited);
    EXPECT_EQ(alerts.messages(), shown);
  }
}

// Each of these rows would be other bytes if its text were read again.
TEST_P(RowsPaneOfColumn, CommitsNothingWhereNothingWasChanged) {
  outlets.popValueDataCharset.selectItemWithTitle("ISO_2022_JP");
  showColumn({"C:\\temp"_bytes, "{\"a\":\"x\\ny\"}"_bytes, "\x1B(Jusual?\x1B(B"_bytes, "\\Bqw=="_bytes});
  const std::string before = bytes(column);
  const std::string nothing = "; End; type x; Backspace; ";
  for (const std::string row : {"0", "1", "2", "3"}) {
    // In which no timer opens the cell again.
    const std::string open = "select " + row + (column == 1 ? "; F2; Tab" : "; F2");
    run(open + "; Return; " + open + "; leave; " + open + "; type x; Escape; " + open + nothing + "Return");
    run(open + nothing + "leave; edit C" + nothing + "leave");
  }
  run("sweep");
  EXPECT_EQ(bytes(column), before);
  EXPECT_EQ(alerts.messages(), Texts{});
}

TEST_P(RowsPaneOfColumn, DropsAnEndedEditWhereTheRowsWereRebuilt) {
  showColumn({"a"_bytes, "b"_bytes});
  run("open 1 C; replace typed");
  tab->shared.queue.poster().post([&] { showColumn({"new a"_bytes, "new b"_bytes}); });
  QTest::keyClick(openField(), Qt::Key_Return);
  settle();
  EXPECT_EQ(bytes(column), "new a|new b");
}

INSTANTIATE_TEST_SUITE_P(, RowsPaneOfColumn, ::testing::ValuesIn(columns));

TEST_F(RowsPaneTest, AddsDeletesAndEditsRowsOfEachKind) {
  // clang-format off
  // Script; first column, values or scores, the selected row and what its editors show.
  const std::vector<std::tuple<ValueType, const char*, const char*, const char*, const char*>> cases{
      {list, "add; type e", "a|inf|b|1e+20|", "", "4 "},
      {list, "click 0 0; add; type after a; Return", "a|after a|inf|b|1e+20", "", "1 after a"},
      {list, "open 0 0; replace A; add", "A||inf|b|1e+20", "", "1 "},
      {list, "click 3 0; edit 0; replace B; add", "a|inf|b|B|", "", "4 "},
      {list, "open 0 0; replace \\B!; add", "a||inf|b|1e+20", "", "1 "},
      {list, "delete; open 0 0; replace typed over a; delete", "inf|b|1e+20", "", "0 a"},
      {hash, "click 0 0; add; type h; Tab; type x; Return", "a|b|h", "inf|1e+20|x", "2 h/x"},
      {hash, "click 1 0; delete; delete", "a", "inf", "-1 b/1e+20"},
      {hash, "click 0 0; F2; replace F; Tab; replace V; Tab; replace no; Escape; Return; replace G; Return", "F|G", "V|1e+20", "1 G/1e+20"},
      {sortedSet, "add; type c; Tab; type 2.5; Return", "a|b|c", "inf|1e+20|2.5", "2 c/2.5"},
      {sortedSet, "click 0 0; edit 0; replace over a; delete; edit 1; replace 99; delete; leave", "", "", "-1 over a/99"},
      // A score opens at once, and stays as the server wrote it until it is another.
      {sortedSet, "click 0 1; type x; Return; click 1 1; type x; leave; sweep; edit 1; leave", "a|b", "inf|1e+20", "1 b/1e+20"},
      {sortedSet, "click 0 1; replace -2x.5; Return", "a|b", "-2.5|1e+20", "0 a/-2.5"},
      {sortedSet, "click 1 1; replace 3; sweep", "a|b", "inf|3", "1 b/1e+20"},
      {sortedSet, "click 1 0; edit 1; replace 7; click 0 0", "a|b", "inf|7", "0 a/inf"},
      {sortedSet, "click 1 0; edit 1; replace -; leave", "a|b", "inf|1e+20", "1 b/-"},
      {sortedSet, "click 0 0; edit 1; replace 8; focus; sweep", "a|b", "8|1e+20", "0 a/8"},
      {sortedSet, "add; type c; edit 1; type 4; leave", "a|b|c", "inf|1e+20|4", "2 c/4"}};
  // clang-format on
  for (const auto& [type, script, first, second, selected] : cases) {
    SCOPED_TRACE(script);
    showRows(type, {"a"_bytes, "inf"_bytes, "b"_bytes, "1e+20"_bytes});
    EXPECT_EQ(outlets.setValueScrollView.isHidden(), type != list);
    EXPECT_EQ(outlets.hashKeyScrollView.isHidden(), type != hash);
    EXPECT_EQ(outlets.sortedSetScoreTextField.isHidden(), type != sortedSet);
    run(script);
    EXPECT_EQ(bytes(0), first);
    EXPECT_EQ(type == hash ? bytes(1) : joined(pane->rows().scores()), second);
    const std::string shown = std::to_string(table->selectedRow()) + ' ' + editorText(0);
    EXPECT_EQ(type == list ? shown : shown + '/' + editorText(1), selected);
  }
}

TEST_F(RowsPaneTest, OpensWholeRowsButTheFieldOfANewOneFirstInColumnsOfTheirShares) {
  // Of the cells which are editable, column by column.
  for (const auto& [type, script, expected] : {std::tuple{list, "open 0 0; open 2 0", "0010"},
                                               {hash, "open 0 1; open 1 0", "1111"},
                                               {hash, "add", "001000"},
                                               {sortedSet, "add", "001111"}}) {
    showRows(type, {"a"_bytes, "1"_bytes, "b"_bytes, "2"_bytes});
    run(script);
    std::string editable;
    for (int at = 0; at < table->numberOfColumns() * table->numberOfRows(); ++at)
      editable += cell(at % table->numberOfRows(), at / table->numberOfRows()).isEditable() ? '1' : '0';
    EXPECT_EQ(editable, expected) << script;
  }
  EXPECT_NEAR(table->tableColumn(0).width(), 0.7 * (outlets.valueDataSortedSetScrollView.frame().width - 8.0), 1.0);
}

TEST_F(RowsPaneTest, TheTimerOpensTheCellAgainButTakesNoKeyboardFromAnotherControlOrAClosedTab) {
  showRows(list, {"a"_bytes});
  for (const bool leaves : {false, true}) {
    run(leaves ? "open 0 0; focus" : "open 0 0; select 0");
    waitForATimer();
    EXPECT_EQ(outlets.txtKey.isFirstResponder(), leaves);
    EXPECT_EQ(openField() != nullptr, !leaves);
  }
  run("open 0 0; type x; Return; open 0 0; type y");
  tab.reset();
  waitForATimer();
  EXPECT_EQ(alerts.messages(), Texts{});
}

TEST_F(RowsPaneTest, RowsThatChangeBehindAnAlertStayAsTheyAre) {
  for (const char* step : {"sweep", "add"}) {
    showRows(hash, {"f"_bytes, "v"_bytes, "g"_bytes, "w"_bytes});
    run("open 1 0; replace \\B!");
    alerts.whileNextIsUp([&] { showRows(hash, {"one"_bytes, "row"_bytes}); });
    run(step);
    EXPECT_EQ(bytes(0) + bytes(1), "onerow");
  }
}

}  // namespace
}  // namespace tarn::test
