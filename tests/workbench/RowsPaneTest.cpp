// What the user does in the tables of rows and in the editors under them, and what the rows become.

#include "tests/workbench/TabFixture.h"
#include "workbench/value/ValuePanes.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>

#include <sstream>

namespace tarn::test {
namespace {

using Rows = std::vector<Bytes>;

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

  // Rows of fields and values, or of members and scores.
  void showRows(ValueType type, Rows reply) {
    pane = tab->panes.rowsOf(type);
    table = type == ValueType::hash        ? &outlets.valueDataHashTable
            : type == ValueType::sortedSet ? &outlets.valueDataSortedSetTable
                                           : &outlets.valueDataSetTable;
    tab->panes.show(type);
    tab->panes.doResize();
    pane->empty();
    table->deselectAll();
    pane->setRows(loadedRows(type, std::move(reply)));
    pane->reload();
    settle();
  }

  NSView& editor(int column) {
    if (table == &outlets.valueDataHashTable) return column == 0 ? outlets.hashKeyTextView : outlets.hashValueTextView;
    if (table == &outlets.valueDataSetTable) return outlets.setValueTextView;
    if (column == 0) return outlets.sortedSetValueTextView;
    return outlets.sortedSetScoreTextField;
  }
  std::string editorText(int column) {
    NSView& view = editor(column);
    if (&view == &outlets.sortedSetScoreTextField) return outlets.sortedSetScoreTextField.stringValue();
    return static_cast<NSTextView&>(view).string();
  }

  // One step of a script: a word, and what it is done to.
  void run(const std::string& step) {
    const std::string word = step.substr(0, step.find(' '));
    const std::string rest = step.substr(std::min(word.size() + 1, step.size()));
    std::istringstream numbers(rest);
    int row = 0;
    int column = 0;
    numbers >> row >> column;
    static const std::vector<std::pair<std::string, Qt::Key>> keys{
        {"enter", Qt::Key_Return}, {"tab", Qt::Key_Tab}, {"escape", Qt::Key_Escape},
        {"f2", Qt::Key_F2},        {"end", Qt::Key_End}, {"backspace", Qt::Key_Backspace}};
    if (word == "click") return clickCell(*table, row, column);
    if (word == "open") return openCell(*table, row, column);
    if (word == "edit") return editor(row).becomeFirstResponder();
    if (word == "type") return type(rest);
    if (word == "replace") return replaceText(rest);
    if (word == "add") return click(*outlets.btnAddRow.widget());
    if (word == "delete") return click(*outlets.btnDeleteSelectedRows.widget());
    if (word == "sweep") return tab->panes.commitCells();
    // As a save does, which reads the rows before anything that was posted.
    if (word == "focus") return outlets.txtKey.becomeFirstResponder();
    if (word == "leave") {
      outlets.txtKey.becomeFirstResponder();
      return settle();
    }
    for (const auto& [name, key] : keys) {
      if (name == word) return press(key);
    }
    FAIL() << "no such step: " << step;
  }
  void runScript(const std::string& script) {
    for (std::size_t at = 0; at < script.size();) {
      const std::size_t end = std::min(script.find("; ", at), script.size());
      run(script.substr(at, end - at));
      at = end + 2;
    }
  }

  static std::string joined(const Texts& texts) {
    std::string result;
    for (const std::string& text : texts)
      result += (result.empty() && &text == &texts.front() ? "" : "|") + text;
    return result;
  }
  std::string bytes(int column) {
    Texts result;
    for (const Bytes& row : pane->rows().columns()[static_cast<std::size_t>(column)].data())
      result.emplace_back(row.view());
    return joined(result);
  }
  NSTableCellView& cell(int row, int column) { return *table->viewAtColumn(column, row, true); }

  AlertRecorder alerts;
  std::shared_ptr<Tab> tab = std::make_shared<Tab>();
  OperationTabLayout& outlets = tab->shared.outlets;
  RowsPane* pane = nullptr;
  NSTableView* table = nullptr;
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
  void showColumn(const Rows& rows) {
    Rows reply;
    for (const Bytes& row : rows) {
      if (GetParam().column == 1) reply.push_back("other"_bytes);
      reply.push_back(row);
      if (GetParam().type == ValueType::hash && column == 0) reply.push_back("other"_bytes);
      if (GetParam().type == ValueType::sortedSet) reply.push_back("1"_bytes);
    }
    showRows(GetParam().type, std::move(reply));
  }
  // With this column in the place of each "C".
  void runInColumn(std::string script) {
    for (std::size_t at = script.find(" C"); at != std::string::npos; at = script.find(" C", at))
      script.replace(at, 2, ' ' + std::to_string(column));
    runScript(script);
  }

  const int column = GetParam().column;
};

TEST_P(RowsPaneOfColumn, TakesWhatIsTypedInItsCellsAndItsEditor) {
  struct Case {
    const char* form;
    const char* script;
    std::string bytes;
    const char* cells;
    const char* editor;
    Texts alerts;
  };
  const std::string alert = "Can not decode Base64 " + std::string(GetParam().tag == 4 ? "Key" : "Value") + " '\\Bqw='";
  // clang-format off
  const std::vector<Case> cases{
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
      {"Base64", "open 0 C; replace ab; enter", "|second", "ab|\\Bc2Vjb25k", "ab", {}},
      {"Base64", "open 0 C; replace a; enter", "a\nb|second", "|\\Bc2Vjb25k", "\\BYQpi", {}},
      {"Base64", "open 0 C; replace a; enter; sweep", "|second", "|\\Bc2Vjb25k", "\\BYQpi", {}},
      // The editor, which never does.
      {"utf8", "edit C; type nowhere; leave", "a\nb|second", "a\\nb|second", "nowhere", {}},
      {"utf8", "click 1 C; edit C; replace x\\ny; leave", "a\nb|x\\ny", "a\\nb|x\\\\ny", "x\\ny", {}},
      {"utf8", "click 0 C; edit C; replace \\Bqw==; leave", "\xAB|second", "\\Bqw==|second", "\\Bqw==", {}},
      {"utf8", "click 1 C; edit C; replace away; click 0 C", "a\nb|away", "a\\nb|away", "a\nb", {}},
      {"iso_8859_1", "click 0 C; edit C; replace 中; leave", "a\nb|second", "a\\nb|second", "中", {}},
      {"Base64", "click 1 C; edit C; replace qw==; leave", "a\nb|second", "\\BYQpi|\\Bc2Vjb25k", "\\Bc2Vjb25k", {}}};
  // clang-format on
  for (const Case& each : cases) {
    SCOPED_TRACE(each.script);
    alerts.clear();
    outlets.popValueDataCharset.selectItemWithTitle(each.form);
    showColumn({"a\nb"_bytes, "second"_bytes});
    runInColumn(each.script);
    EXPECT_EQ(bytes(column), each.bytes);
    EXPECT_EQ(joined(texts(*table, column)), each.cells);
    EXPECT_EQ(editorText(column), each.editor);
    EXPECT_EQ(alerts.messages(), each.alerts);
  }
}

TEST_P(RowsPaneOfColumn, OpensACellUnderItsTagAndSaysHowToConfirm) {
  showColumn({"first"_bytes, "second"_bytes});
  EXPECT_FALSE(cell(1, column).isEditable());
  EXPECT_EQ(cell(1, column).toolTip(), "second");
  runInColumn("open 1 C");
  ASSERT_TRUE(editorOf(*table));
  EXPECT_TRUE(cell(1, column).isEditable());
  EXPECT_EQ(cell(1, column).tag(), GetParam().tag);
  EXPECT_EQ(cell(1, column).toolTip(), "Press Enter to confirm");
  runInColumn("replace x\\ty; enter");
  EXPECT_EQ(cell(1, column).toolTip(), "x\ty");
}

// Each of these rows would be other bytes if its text were read again.
TEST_P(RowsPaneOfColumn, CommitsNothingWhereNothingWasChanged) {
  outlets.popValueDataCharset.selectItemWithTitle("ISO_2022_JP");
  showColumn({"C:\\temp"_bytes, "{\"a\":\"x\\ny\"}"_bytes, "\x1B(Busual?"_bytes, "\\Bqw=="_bytes});
  const std::string before = bytes(column);
  for (const char* row : {"0", "1", "2", "3"}) {
    for (const char* script : {"enter", "leave", "type x; escape", "end; type x; backspace; enter",
                               "end; type x; backspace; leave; edit C; end; type x; backspace; leave"})
      runInColumn("open " + std::string(row) + " C; " + script);
  }
  runScript("sweep");
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
  EXPECT_EQ(cell(1, column).stringValue(), "new b");
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
  struct Case {
    ValueType type;
    const char* script;
    const char* first;
    // Values or scores.
    const char* second;
    // The selected row and what its editors show.
    const char* selected;
    Texts alerts;
  };
  // clang-format off
  const std::vector<Case> cases{
      {list, "add; type e", "a|1|b|2|", "", "4 ", {}},
      {list, "click 0 0; add; type after a; enter", "a|after a|1|b|2", "", "1 after a", {}},
      {list, "open 0 0; replace A; add", "A||1|b|2", "", "1 ", {}},
      {list, "click 3 0; edit 0; replace B; add", "a|1|b|B|", "", "4 ", {}},
      {list, "open 0 0; replace \\B!; add", "a||1|b|2", "", "1 ", {"Can not decode Base64 Value '\\B!'"}},
      {list, "delete", "a|1|b|2", "", "-1 ", {}},
      {list, "open 0 0; replace typed over a; delete", "1|b|2", "", "0 a", {}},
      {hash, "click 0 0; add; type h; tab; type x; enter", "a|b|h", "1|2|x", "2 h/x", {}},
      {hash, "click 0 1; delete", "b", "2", "0 a/1", {}},
      {hash, "click 1 0; delete; delete", "a", "1", "-1 b/2", {}},
      {hash, "click 0 0; f2; replace F; tab; replace V; tab; replace no; escape; enter; replace G; enter", "F|G", "V|2", "1 G/2", {}},
      {sortedSet, "add; type c; tab; type 2.5; enter", "a|b|c", "1|2|2.5", "2 c/2.5", {}},
      {sortedSet, "click 0 0; edit 0; replace typed over a; delete; edit 1; replace 99; delete; leave", "", "", "-1 typed over a/99", {}},
      {sortedSet, "click 0 1; replace -2x.5; enter", "a|b", "-2.5|2", "0 a/-2.5", {}},
      {sortedSet, "click 1 1; replace 3; sweep", "a|b", "1|3", "1 b/2", {}},
      {sortedSet, "click 1 0; edit 1; replace 7; click 0 0", "a|b", "1|7", "0 a/1", {}},
      {sortedSet, "click 1 0; edit 1; replace -; leave", "a|b", "1|2", "1 b/-", {}},
      {sortedSet, "click 0 0; edit 1; replace 8; focus; sweep", "a|b", "8|2", "0 a/8", {}},
      {sortedSet, "add; type c; edit 1; type 4; leave", "a|b|c", "1|2|4", "2 c/4", {}}};
  // clang-format on
  for (const Case& each : cases) {
    SCOPED_TRACE(each.script);
    alerts.clear();
    showRows(each.type, {"a"_bytes, "1"_bytes, "b"_bytes, "2"_bytes});
    runScript(each.script);
    EXPECT_EQ(bytes(0), each.first);
    EXPECT_EQ(each.type == hash ? bytes(1) : joined(pane->rows().scores()), each.second);
    EXPECT_EQ(
        std::to_string(table->selectedRow()) + ' ' + editorText(0) + (each.type == list ? "" : '/' + editorText(1)),
        each.selected);
    EXPECT_EQ(alerts.messages(), each.alerts);
  }
}

TEST_F(RowsPaneTest, ANewFieldOpensBeforeItsValue) {
  showRows(ValueType::hash, {"f"_bytes, "v"_bytes});
  runScript("add");
  EXPECT_TRUE(cell(1, 0).isEditable());
  EXPECT_FALSE(cell(1, 1).isEditable());
  EXPECT_EQ(cell(1, 0).tag(), 4);
  EXPECT_EQ(cell(1, 1).tag(), 5);
  EXPECT_EQ(cell(1, 1).toolTip(), "Press Enter to confirm");
}

TEST_F(RowsPaneTest, ADoubleClickClosesTheOtherRowsOfAListOnly) {
  showRows(ValueType::list, {"a"_bytes, "b"_bytes});
  runScript("open 0 0; open 1 0");
  EXPECT_FALSE(cell(0, 0).isEditable());
  EXPECT_TRUE(cell(1, 0).isEditable());

  showRows(ValueType::hash, {"f"_bytes, "v"_bytes, "g"_bytes, "w"_bytes});
  runScript("open 0 1; open 1 0");
  for (const int row : {0, 1})
    EXPECT_TRUE(cell(row, 0).isEditable() && cell(row, 1).isEditable());
  runScript("click 0 1");
  ASSERT_TRUE(editorOf(*table));
  EXPECT_EQ(editorOf(*table)->utf8(), "v");
}

TEST_F(RowsPaneTest, TheTimerOpensTheCellAgainButTakesNoKeyboardFromAnotherControl) {
  showRows(ValueType::list, {"a"_bytes});
  for (const bool leaves : {false, true}) {
    runScript("open 0 0");
    (leaves ? static_cast<NSView&>(outlets.txtKey) : *table).becomeFirstResponder();
    bool hasFired = false;
    NSTimer::scheduledTimerWithTimeInterval(0.1, false, [&] { hasFired = true; });
    ASSERT_TRUE(waitUntil([&] { return hasFired; }));
    settle();
    EXPECT_EQ(outlets.txtKey.isFirstResponder(), leaves);
    EXPECT_EQ(editorOf(*table) != nullptr, !leaves);
  }
}

TEST_F(RowsPaneTest, AScoreOpensAtOnceAndStaysAsTheServerWroteIt) {
  showRows(ValueType::sortedSet,
           {"a"_bytes, "inf"_bytes, "b"_bytes, "1e+20"_bytes, "c"_bytes, "0.30000000000000004"_bytes});
  for (const char* script :
       {"click 0 1; type x; enter", "click 1 1; type x; enter", "click 2 1; type x; leave", "sweep", "edit 1; leave"})
    runScript(script);
  EXPECT_EQ(cell(0, 1).tag(), 7);
  EXPECT_EQ(joined(pane->rows().scores()), "inf|1e+20|0.30000000000000004");
}

TEST_F(RowsPaneTest, RowsThatChangeBehindAnAlertStayAsTheyAre) {
  for (const char* step : {"sweep", "add"}) {
    showRows(ValueType::hash, {"f"_bytes, "v"_bytes, "g"_bytes, "w"_bytes});
    runScript("open 1 0; replace \\B!");
    alerts.whileNextIsUp([this] { showRows(ValueType::hash, {"one"_bytes, "row"_bytes}); });
    runScript(step);
    EXPECT_EQ(bytes(0) + bytes(1), "onerow");
  }
  EXPECT_EQ(alerts.messages(), (Texts{2, "Can not decode Base64 Key '\\B!'"}));
}

TEST_F(RowsPaneTest, TheMenuOfATableAddsAndDeletes) {
  using enum ValueType;
  for (const auto& [type, title] : {std::pair{set, "SetTable快捷菜单"}, std::pair{hash, "HashTable快捷菜单"},
                                    std::pair{sortedSet, "SortedSet快捷菜单"}}) {
    showRows(type, {"a"_bytes, "1"_bytes, "b"_bytes, "2"_bytes});
    const int count = table->numberOfRows();
    for (const char* item : {"Add Row", "Delete Selected Row(s)"}) {
      clickCell(*table, 1, 0, Qt::RightButton);
      QWidget* cells = widgetOf(*table).viewport();
      const QPoint position = widgetOf(*table).cellRect(1, 0).center();
      QContextMenuEvent event(QContextMenuEvent::Mouse, position, cells->mapToGlobal(position));
      QApplication::sendEvent(cells, &event);
      settle();
      auto& menu = dynamic_cast<QMenu&>(*openPopUp());
      EXPECT_EQ(menu.title().toStdString(), title);
      for (QAction* action : menu.actions()) {
        if (action->text() != item) continue;
        EXPECT_TRUE(action->isEnabled());
        click(menu, menu.actionGeometry(action).center());
        break;
      }
      const bool isAdded = std::string_view(item) == "Add Row";
      EXPECT_EQ(table->numberOfRows(), isAdded ? count + 1 : count);
    }
    EXPECT_EQ(bytes(0).substr(0, 2), "a|");
  }
}

}  // namespace
}  // namespace tarn::test
