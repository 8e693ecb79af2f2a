// What the user does in the tables of rows and in the editors under them, and what the rows become.

#include "tests/workbench/TabFixture.h"
#include "workbench/value/ValuePanes.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>

#include <sstream>

namespace tarn::test {
namespace {

class RowsPaneTest : public ::testing::Test {
protected:
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
    table = &outlets.valueDataSetTable;
    editors = {&outlets.setValueTextView, &outlets.setValueTextView};
    if (type == ValueType::hash) {
      table = &outlets.valueDataHashTable;
      editors = {&outlets.hashKeyTextView, &outlets.hashValueTextView};
    } else if (type == ValueType::sortedSet) {
      table = &outlets.valueDataSortedSetTable;
      editors = {&outlets.sortedSetValueTextView, &outlets.sortedSetScoreTextField};
    }
    alerts.clear();
    tab->panes.show(type);
    tab->panes.doResize();
    pane->empty();
    table->deselectAll();
    pane->setRows(loadedRows(type, std::move(reply)));
    pane->reload();
    settle();
  }

  // Steps with "; " between them: a word, and what it is done to.
  void run(const std::string& script) {
    const std::string step = script.substr(0, script.find("; "));
    const std::string word = step.substr(0, step.find(' '));
    const std::string rest = step.substr(std::min(word.size() + 1, step.size()));
    std::istringstream numbers(rest);
    int row = 0;
    int column = 0;
    numbers >> row >> column;
    static const std::map<std::string, Qt::Key> keys{{"enter", Qt::Key_Return},  {"tab", Qt::Key_Tab},
                                                     {"escape", Qt::Key_Escape}, {"f2", Qt::Key_F2},
                                                     {"end", Qt::Key_End},       {"backspace", Qt::Key_Backspace}};
    if (word == "click") clickCell(*table, row, column);
    if (word == "open") openCell(*table, row, column);
    if (word == "edit") editors.at(static_cast<std::size_t>(row))->becomeFirstResponder();
    if (word == "type") type(rest);
    if (word == "replace") replaceText(rest);
    if (word == "add") click(*outlets.btnAddRow.widget());
    if (word == "delete") click(*outlets.btnDeleteSelectedRows.widget());
    if (word == "sweep") tab->panes.commitCells();
    // A save reads the rows before anything that was posted.
    if (word == "focus" || word == "leave") outlets.txtKey.becomeFirstResponder();
    if (word == "leave") settle();
    if (keys.contains(word)) press(keys.at(word));
    if (step.size() < script.size()) run(script.substr(step.size() + 2));
  }

  static std::string joined(const Texts& texts) {
    std::string result;
    for (std::size_t i = 0; i < texts.size(); ++i)
      result += (i > 0 ? "|" : "") + texts[i];
    return result;
  }
  std::string bytes(int column) {
    Texts result;
    for (const Bytes& row : pane->rows().columns()[static_cast<std::size_t>(column)].data())
      result.emplace_back(row.view());
    return joined(result);
  }
  std::string editorText(std::size_t column) {
    if (const auto* view = dynamic_cast<NSTextView*>(editors[column])) return view->string();
    return outlets.sortedSetScoreTextField.stringValue();
  }
  NSTableCellView& cell(int row, int column) { return *table->viewAtColumn(column, row, true); }

  AlertRecorder alerts;
  std::shared_ptr<Tab> tab = std::make_shared<Tab>();
  OperationTabLayout& outlets = tab->shared.outlets;
  RowsPane* pane = nullptr;
  NSTableView* table = nullptr;
  std::array<NSView*, 2> editors{};
};

// --- Each of the four columns of text ------------------------------------------------------------------------------

struct Column {
  const char* name;
  ValueType type;
  int tag;
  int column;
};

class RowsPaneOfColumn : public RowsPaneTest, public ::testing::WithParamInterface<Column> {
protected:
  void showColumn(const std::vector<Bytes>& rows) {
    std::vector<Bytes> reply;
    for (const Bytes& row : rows) {
      if (column == 1) reply.push_back("other"_bytes);
      reply.push_back(row);
      if (GetParam().type != ValueType::list && column == 0) reply.push_back("1"_bytes);
    }
    showRows(GetParam().type, std::move(reply));
  }
  // With this column in the place of each "C".
  void runInColumn(std::string script) {
    for (std::size_t at = script.find(" C"); at != std::string::npos; at = script.find(" C", at))
      script.replace(at, 2, ' ' + std::to_string(column));
    run(script);
  }

  const int column = GetParam().column;
};

TEST_P(RowsPaneOfColumn, TakesWhatIsTypedInItsCellsAndItsEditor) {
  showColumn({"a\tb"_bytes});
  runInColumn("open 0 C");
  EXPECT_EQ(cell(0, column).toolTip(), "Press Enter to confirm");
  runInColumn("replace x\\ty; enter");
  EXPECT_EQ(cell(0, column).toolTip(), "x\ty");
  const std::string alert =
      std::string("Can not decode Base64 ") + (GetParam().tag == 4 ? "Key" : "Value") + " '\\Bqw='";
  // clang-format off
  // Form, script; bytes, cells, editor, alerts.
  const std::vector<std::tuple<const char*, const char*, std::string, const char*, const char*, Texts>> cases{
      // Cells, which say what is wrong only when the focus leaves.
      {"utf8", "open 1 C; replace x\\ny; enter", "a\nb|x\ny", "a\\nb|x\\ny", "x\ny", {}},
      {"utf8", "open 0 C; replace left; leave", "left|second", "left|second", "left", {}},
      {"utf8", "open 1 C; replace away; click 0 C", "a\nb|away", "a\\nb|away", "a\nb", {}},
      {"utf8", "open 1 C; replace A; sweep", "a\nb|A", "a\\nb|A", "second", {}},
      {"iso_8859_1", "open 0 C; replace 中; enter", "a\nb|second", "a\\nb|second", "a\nb", {}},
      {"iso_8859_1", "open 0 C; replace 中; leave", "a\nb|second", "a\\nb|second", "a\nb", {}},
      {"iso_8859_1", "open 0 C; replace \\Bqw=; enter", "a\nb|second", "a\\nb|second", "a\nb", {}},
      {"iso_8859_1", "open 0 C; replace \\Bqw=; leave", "a\nb|second", "a\\nb|second", "a\nb", {alert}},
      {"iso_8859_1", "open 0 C; replace \\Bqw==; enter", "\xAB|second", "\\Bqw==|second", "\\Bqw==", {}},
      {"Base64", "open 0 C; replace a; enter", "a\nb|second", "|\\Bc2Vjb25k", "\\BYQpi", {}},
      {"Base64", "open 0 C; replace a; enter; sweep", "|second", "|\\Bc2Vjb25k", "\\BYQpi", {}},
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
    runInColumn(script);
    EXPECT_EQ(bytes(column), stored);
    EXPECT_EQ(joined(texts(*table, column)), cells);
    EXPECT_EQ(editorText(static_cast<std::size_t>(column)), edited);
    EXPECT_EQ(alerts.messages(), shown);
  }
}

// Each of these rows would be other bytes if its text were read again.
TEST_P(RowsPaneOfColumn, CommitsNothingWhereNothingWasChanged) {
  outlets.popValueDataCharset.selectItemWithTitle("ISO_2022_JP");
  showColumn({"C:\\temp"_bytes, "{\"a\":\"x\\ny\"}"_bytes, "\x1B(Busual?"_bytes, "\\Bqw=="_bytes});
  const std::string before = bytes(column);
  const std::string nothing = "; end; type x; backspace; ";
  for (const char* row : {"0", "1", "2", "3"}) {
    for (const std::string& script : {std::string("; enter"), std::string("; leave"), std::string("; type x; escape"),
                                      nothing + "enter", nothing + "leave; edit C" + nothing + "leave"})
      runInColumn("open " + std::string(row) + " C" + script);
  }
  run("sweep");
  EXPECT_EQ(bytes(column), before);
  EXPECT_EQ(alerts.messages(), Texts{});
}

TEST_P(RowsPaneOfColumn, DropsAnEndedEditWhereTheRowsWereRebuilt) {
  showColumn({"a"_bytes, "b"_bytes});
  runInColumn("open 1 C; replace typed");
  tab->shared.queue.poster().post([&] { showColumn({"new a"_bytes, "new b"_bytes}); });
  QTest::keyClick(editorOf(*table), Qt::Key_Return);
  settle();
  EXPECT_EQ(bytes(column), "new a|new b");
}

INSTANTIATE_TEST_SUITE_P(, RowsPaneOfColumn,
                         ::testing::Values(Column{"Element", ValueType::list, 2, 0},
                                           Column{"Field", ValueType::hash, 4, 0},
                                           Column{"Value", ValueType::hash, 5, 1},
                                           Column{"Member", ValueType::sortedSet, 6, 0}),
                         [](const ::testing::TestParamInfo<Column>& column) { return column.param.name; });

// --- Whole rows ----------------------------------------------------------------------------------------------------

TEST_F(RowsPaneTest, AddsDeletesAndEditsRowsOfEachKind) {
  using enum ValueType;
  // clang-format off
  // Script; first column, values or scores, the selected row and what its editors show.
  const std::vector<std::tuple<ValueType, const char*, const char*, const char*, const char*>> cases{
      {list, "add; type e", "a|inf|b|1e+20|", "", "4 "},
      {list, "click 0 0; add; type after a; enter", "a|after a|inf|b|1e+20", "", "1 after a"},
      {list, "open 0 0; replace A; add", "A||inf|b|1e+20", "", "1 "},
      {list, "click 3 0; edit 0; replace B; add", "a|inf|b|B|", "", "4 "},
      {list, "open 0 0; replace \\B!; add", "a||inf|b|1e+20", "", "1 "},
      {list, "delete; open 0 0; replace typed over a; delete", "inf|b|1e+20", "", "0 a"},
      {hash, "click 0 0; add; type h; tab; type x; enter", "a|b|h", "inf|1e+20|x", "2 h/x"},
      {hash, "click 1 0; delete; delete", "a", "inf", "-1 b/1e+20"},
      {hash, "click 0 0; f2; replace F; tab; replace V; tab; replace no; escape; enter; replace G; enter", "F|G", "V|1e+20", "1 G/1e+20"},
      {sortedSet, "add; type c; tab; type 2.5; enter", "a|b|c", "inf|1e+20|2.5", "2 c/2.5"},
      {sortedSet, "click 0 0; edit 0; replace over a; delete; edit 1; replace 99; delete; leave", "", "", "-1 over a/99"},
      // A score opens at once, and stays as the server wrote it until it is another.
      {sortedSet, "click 0 1; type x; enter; click 1 1; type x; leave; sweep; edit 1; leave", "a|b", "inf|1e+20", "1 b/1e+20"},
      {sortedSet, "click 0 1; replace -2x.5; enter", "a|b", "-2.5|1e+20", "0 a/-2.5"},
      {sortedSet, "click 1 1; replace 3; sweep", "a|b", "inf|3", "1 b/1e+20"},
      {sortedSet, "click 1 0; edit 1; replace 7; click 0 0", "a|b", "inf|7", "0 a/inf"},
      {sortedSet, "click 1 0; edit 1; replace -; leave", "a|b", "inf|1e+20", "1 b/-"},
      {sortedSet, "click 0 0; edit 1; replace 8; focus; sweep", "a|b", "8|1e+20", "0 a/8"},
      {sortedSet, "add; type c; edit 1; type 4; leave", "a|b|c", "inf|1e+20|4", "2 c/4"}};
  // clang-format on
  for (const auto& [type, script, first, second, selected] : cases) {
    SCOPED_TRACE(script);
    showRows(type, {"a"_bytes, "inf"_bytes, "b"_bytes, "1e+20"_bytes});
    run(script);
    EXPECT_EQ(bytes(0), first);
    EXPECT_EQ(type == hash ? bytes(1) : joined(pane->rows().scores()), second);
    const std::string shown = std::to_string(table->selectedRow()) + ' ' + editorText(0);
    EXPECT_EQ(type == list ? shown : shown + '/' + editorText(1), selected);
  }
}

TEST_F(RowsPaneTest, OpensWholeRowsButTheFieldOfANewOneFirst) {
  using enum ValueType;
  // Of the cells which are editable, column by column, and the tags of the last row.
  for (const auto& [type, script, editable, lastTags] : {std::tuple{list, "open 0 0; open 1 0", "01", "2"},
                                                         {hash, "open 0 1; open 1 0", "1111", "45"},
                                                         {hash, "add", "001000", "45"},
                                                         {sortedSet, "add", "001111", "67"}}) {
    showRows(type, type == list ? std::vector{"a"_bytes, "b"_bytes}
                                : std::vector{"a"_bytes, "1"_bytes, "b"_bytes, "2"_bytes});
    run(script);
    std::string editables;
    std::string tags;
    for (int column = 0; column < table->numberOfColumns(); ++column) {
      for (int row = 0; row < table->numberOfRows(); ++row)
        editables += cell(row, column).isEditable() ? '1' : '0';
      tags += std::to_string(cell(table->numberOfRows() - 1, column).tag());
    }
    EXPECT_EQ(editables, editable) << script;
    EXPECT_EQ(tags, lastTags) << script;
  }
}

TEST_F(RowsPaneTest, EachTypeHasItsPaneAndItsEditors) {
  using enum ValueType;
  const std::vector<NSView*> views{&outlets.valueDataStringScrollView,
                                   &outlets.valueDataSetScrollView,
                                   &outlets.setValueScrollView,
                                   &outlets.valueDataHashScrollView,
                                   &outlets.hashKeyScrollView,
                                   &outlets.hashValueScrollView,
                                   &outlets.valueDataSortedSetScrollView,
                                   &outlets.sortedSetValueScrollView,
                                   &outlets.sortedSetScoreTextField,
                                   &outlets.btnAddRow,
                                   &outlets.btnDeleteSelectedRows};
  const std::vector<std::pair<std::optional<ValueType>, std::string>> shown{
      {string, "10000000000"}, {list, "01100000011"},      {set, "01100000011"},
      {hash, "00011100011"},   {sortedSet, "00000011111"}, {std::nullopt, "10000000000"}};
  for (const auto& [type, expected] : shown) {
    tab->panes.show(type);
    std::string visible;
    for (const NSView* view : views)
      visible += view->isHidden() ? '0' : '1';
    EXPECT_EQ(visible, expected);
  }
  showRows(sortedSet, {"a"_bytes, "1"_bytes});
  const double width = outlets.valueDataSortedSetScrollView.frame().width - 8.0;
  EXPECT_NEAR(table->tableColumn(0).width(), 0.7 * width, 1.0);
  EXPECT_NEAR(table->tableColumn(1).width(), 0.3 * width, 1.0);
}

TEST_F(RowsPaneTest, TheTimerOpensTheCellAgainButTakesNoKeyboardFromAnotherControl) {
  showRows(ValueType::list, {"a"_bytes});
  for (const bool leaves : {false, true}) {
    run("open 0 0");
    (leaves ? static_cast<NSView&>(outlets.txtKey) : *table).becomeFirstResponder();
    waitForATimer();
    EXPECT_EQ(outlets.txtKey.isFirstResponder(), leaves);
    EXPECT_EQ(editorOf(*table) != nullptr, !leaves);
  }
}

TEST_F(RowsPaneTest, RowsThatChangeBehindAnAlertStayAsTheyAre) {
  for (const char* step : {"sweep", "add"}) {
    showRows(ValueType::hash, {"f"_bytes, "v"_bytes, "g"_bytes, "w"_bytes});
    run("open 1 0; replace \\B!");
    std::string told;
    alerts.whileNextIsUp([&] {
      told = alerts.messages().back();
      showRows(ValueType::hash, {"one"_bytes, "row"_bytes});
    });
    run(step);
    EXPECT_EQ(told, "Can not decode Base64 Key '\\B!'");
    EXPECT_EQ(bytes(0) + bytes(1), "onerow");
  }
}

TEST_F(RowsPaneTest, TheMenuAddsAndDeletes) {
  showRows(ValueType::hash, {"a"_bytes, "1"_bytes, "b"_bytes, "2"_bytes});
  for (const int item : {1, 0}) {
    const QPoint position = widgetOf(*table).cellRect(1, 0).center();
    QWidget* const cells = widgetOf(*table).viewport();
    click(*cells, position, Qt::RightButton);
    QContextMenuEvent event(QContextMenuEvent::Mouse, position, cells->mapToGlobal(position));
    QApplication::sendEvent(cells, &event);
    settle();
    auto& menu = dynamic_cast<QMenu&>(*openPopUp());
    EXPECT_EQ(menu.title(), "HashTable快捷菜单");
    click(menu, menu.actionGeometry(menu.actions().at(item)).center());
    EXPECT_EQ(bytes(0), item == 1 ? "a|b|" : "a|");
  }
}

}  // namespace
}  // namespace tarn::test
