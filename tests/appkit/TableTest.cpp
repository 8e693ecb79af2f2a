#include "platform/appkit/NSMenu.h"
#include "platform/appkit/table/CellText.h"
#include "tests/appkit/TableFixture.h"

#include <QAccessible>
#include <QComboBox>
#include <QMenu>
#include <QScrollBar>
#include <QTest>

#include <functional>

namespace tarn::test {
namespace {

class Table : public TableFixture {
protected:
  Table() { fill(100); }

  // Opens the cell, types into it, and forgets what that said.
  void edit(int row, int column, std::string_view typed = "x") {
    open(row, column);
    type(typed);
    log.take();
  }
};

}  // namespace

TEST_F(Table, MakesAndRecyclesCellsForTheRowsInSightOnly) {
  fills = 0;
  fill(10'000'000);
  const auto inSight = static_cast<std::size_t>(cells().height() / NSTableView::rowHeight + 2);
  EXPECT_LE(table.rowsWithViews().size(), inSight);
  EXPECT_LE(fills, static_cast<int>(2 * inSight));
  EXPECT_EQ(cell(0, 0).stringValue(), "name0");
  EXPECT_EQ(table.viewAtColumn(0, 5'000'000, false), nullptr);
  cell(0, 0).setEditable(true);
  cell(0, 0).setToolTip("tip");

  table.scrollRowToVisible(9'999'999);
  settle();
  EXPECT_EQ(table.rowsWithViews().back(), 9'999'999);
  EXPECT_LE(table.rowsWithViews().size(), inSight);
  EXPECT_EQ(cell(9'999'999, 0).stringValue(), "name9999999");
  click(cells(), at(9'999'999, 0));
  EXPECT_EQ(table.selectedRow(), 9'999'999);
  table.scrollRowToVisible(0);
  EXPECT_FALSE(cell(0, 0).isEditable());
  EXPECT_EQ(cell(0, 0).toolTip(), "");

  // On demand also one out of sight, which then stays the row's.
  NSTableCellView* far = table.viewAtColumn(1, 500, true);
  ASSERT_NE(far, nullptr);
  EXPECT_EQ(far->stringValue(), "1500");
  table.scrollRowToVisible(500);
  EXPECT_EQ(table.viewAtColumn(1, 500, false), far);
  for (const auto& [row, column] : {std::pair{10'000'000, 1}, {0, 2}, {-1, 0}})
    EXPECT_EQ(table.viewAtColumn(column, row, true), nullptr);
}

TEST_F(Table, ReloadKeepsTheValidSelectionSilently) {
  fill(50);
  table.selectRow(9);
  log.take();
  texts[{0, 1}] = texts[{1, 0}] = texts[{1, 1}] = "changed";
  table.reloadDataForRowIndexes({1, 99}, {1, 99});
  EXPECT_EQ(cell(1, 1).stringValue() + cell(1, 0).stringValue() + cell(0, 1).stringValue(), "changedname110");
  fill(10);
  EXPECT_EQ(cell(0, 1).stringValue(), "changed");
  EXPECT_EQ(table.selectedRow(), 9);
  fill(9);
  EXPECT_EQ(table.selectedRow(), -1);
  fill(0);
  EXPECT_TRUE(table.rowsWithViews().empty());
  EXPECT_EQ(log.take(), "");
}

TEST_F(Table, SaysEachChangeOfTheSelectionOnce) {
  const auto clickAt = [&](int row, Qt::KeyboardModifiers modifiers = {}) {
    click(cells(), row < 0 ? QPoint(30, 100) : at(row, 0), Qt::LeftButton, modifiers);
  };
  const auto select = [&](int row) { table.selectRow(row); };
  const std::vector<std::pair<std::function<void()>, std::string>> steps{
      {[&] { select(3); }, "changed 3"},
      {[&] { select(3); }, ""},
      {[&] { select(4); }, "changed 4"},
      {[&] { select(100); }, ""},
      {[&] { table.deselectAll(); }, "changed -1"},
      {[&] { clickAt(2); }, "changing, changed 2, mouse 2/0"},
      {[&] { clickAt(2); }, "mouse 2/0"},
      {[&] { clickAt(2, Qt::ControlModifier); }, "changing, changed -1, mouse 2/0"},
      {[&] { fill(2), clickAt(-1); }, "mouse -1/-1"},
      {[&] { fill(100), widget->setFocus(), keys("Down Down Up Up"); },
       "changing, changed 0, changing, changed 1, changing, changed 0"},
      {[&] { keys("End"); }, "changing, changed 99"},
      {[&] { table.deselectAll(), log.take(), keys("Up"); }, "changing, changed 99"},
      {[&] { keys("Home PgDown PgUp"); }, "changing, changed 0, changing, changed " +
                                              std::to_string(cells().height() / NSTableView::rowHeight - 1) +
                                              ", changing, changed 0"},
      {[&] { fill(0), keys("Down PgUp"); }, ""}};
  for (std::size_t step = 0; step < steps.size(); ++step) {
    steps[step].first();
    EXPECT_EQ(log.take(), steps[step].second) << step;
  }
}

TEST_F(Table, ColumnsHaveTheirWidthsAndLimits) {
  const QHeaderView& header = widget->header();
  const double usable = cells().width();
  for (const auto& [column, width] : {std::pair{0, 280}, {1, 120}}) {
    table.tableColumn(column).setMaxWidth(width);
    table.tableColumn(column).setWidth(width + 50);
    EXPECT_EQ(table.tableColumn(column).width(), width);
  }
  EXPECT_EQ(header.sectionSize(0), 280);
  EXPECT_EQ(header.length(), usable);
  for (const auto& [dragged, width] : {std::pair{350, 280}, {100, 100}}) {
    widget->header().resizeSection(0, dragged);
    EXPECT_EQ(table.tableColumn(0).width(), width);
    EXPECT_EQ(header.length(), usable);
  }
  table.tableColumn(0).setWidth(-5);
  EXPECT_EQ(table.tableColumn(0).width(), -5);
  table.tableColumn(0).setHeaderToolTip("Count Shown:5");
  EXPECT_EQ(header.model()->headerData(0, Qt::Horizontal, Qt::ToolTipRole).toString(), "Count Shown:5");
  EXPECT_EQ(header.model()->headerData(1, Qt::Horizontal).toString(), "Score");
}

TEST_F(Table, ToolTipIsTheCellsOwnOrTheTextThatIsCut) {
  texts[{0, 0}] = "<b>" + std::string(1 << 20, 'l');
  fill(3);
  cell(2, 0).setToolTip("its own & only");
  EXPECT_TRUE(toolTipOf(cells(), at(0, 0)).contains(QStringLiteral("&lt;b&gt;lll")));
  EXPECT_LT(toolTipOf(cells(), at(0, 0)).size(), 3000);
  EXPECT_EQ(toolTipOf(cells(), at(1, 0)), QString());
  EXPECT_TRUE(toolTipOf(cells(), at(2, 0)).contains(QStringLiteral("its own &amp; only")));
  EXPECT_EQ(toolTipOf(cells(), at(5, 0)), QString());
}

TEST_F(Table, RightClickSelectsTheRowAndOpensTheMenuWhichTheMenuKeyDoesToo) {
  auto menu = std::make_shared<NSMenu>("Rows");
  menu->addItem("Insert & go", [this] { log.add("insert"); });
  table.setMenu(menu);
  const auto ask = [&](QContextMenuEvent::Reason reason, QPoint position) {
    QContextMenuEvent event(reason, position, cells().mapToGlobal(position));
    QApplication::sendEvent(&cells(), &event);
    auto* opened = dynamic_cast<QMenu*>(openPopUp());
    EXPECT_EQ(opened->actions().front()->text(), QStringLiteral("Insert && go"));
    const QPoint place = cells().mapFromGlobal(opened->pos());
    opened->actions().front()->trigger();
    opened->close();
    settle();
    return place;
  };
  ask(QContextMenuEvent::Mouse, at(3, 0));
  EXPECT_EQ(log.take(), "changing, changed 3, insert");
  EXPECT_EQ(ask(QContextMenuEvent::Keyboard, {}), widget->cellRect(3, 0).bottomLeft());
  EXPECT_EQ(log.take(), "insert");
}

TEST(CellText, PaintsNoMoreThanFits) {
  const QFontMetrics metrics{QFont()};
  const QString shown = elidedLine(std::string(100'000'000, 'x'), metrics, 300);
  EXPECT_LE(metrics.horizontalAdvance(shown), 300);
  EXPECT_TRUE(shown.endsWith(QChar(0x2026)));
  // Characters without a width fill no line, and still end.
  std::string marks = "a";
  for (int count = 0; count < 100'000; ++count)
    marks += "\xCC\x81";
  EXPECT_LT(elidedLine(marks, metrics, 300).size(), 1000);
  EXPECT_EQ(elidedLine("short", metrics, 300), "short");
  EXPECT_FALSE(elidedLine("a\nb\tc", metrics, 300).contains('\n'));
  EXPECT_EQ(elidedLine("text", metrics, 0), "");
}

TEST_F(Table, ScreenReadersFindRowsAndCells) {
  QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
  ASSERT_NE(interface, nullptr);
  EXPECT_EQ(interface->role(), QAccessible::Table);
  QAccessibleTableInterface* spoken = interface->tableInterface();
  ASSERT_NE(spoken, nullptr);
  EXPECT_EQ(spoken->rowCount(), 100);
  EXPECT_EQ(spoken->cellAt(0, 0)->text(QAccessible::Name), "name0");
  EXPECT_EQ(spoken->cellAt(70, 1)->text(QAccessible::Name), "170");
  EXPECT_EQ(spoken->cellAt(100, 0), nullptr);
  EXPECT_EQ(interface->indexOfChild(interface->child(3)), 3);
  EXPECT_TRUE(spoken->selectRow(4));
  EXPECT_TRUE(spoken->cellAt(4, 1)->state().selected && !spoken->cellAt(5, 1)->state().selected);
  EXPECT_EQ(log.take(), "changing, changed 4");
}

TEST_F(Table, OpensAnEditableCellWithAllItsTextSelected) {
  cell(1, 0).becomeFirstResponder();
  EXPECT_FALSE(isOpen());
  open(1, 0);
  ASSERT_TRUE(isOpen());
  EXPECT_TRUE(editor().hasFocus());
  EXPECT_TRUE(widget->cellRect(1, 0).contains(editor().geometry()));
  type("ab");
  EXPECT_TRUE(cell(1, 0).isEdited());
  cell(1, 0).becomeFirstResponder();
  type("c");
  EXPECT_EQ(cell(1, 0).stringValue(), "abc");
  EXPECT_EQ(log.take(), "begin 6");
}

// From an open cell 1/0 with "x" typed: what each key or click says, and what
// the cell holds afterwards.
TEST_F(Table, EndsAnEditByKeysAndClicks) {
  struct Case {
    std::function<void()> end;
    std::string said;
    std::string text;
    QWidget* focus;
  };
  // clang-format off
  for (const Case& ended : {
           Case{[&] { keys("Return"); }, "end 6 1/0 x", "x", widget},
           {[&] { keys("Escape"); }, "", "name1", widget},
           {[&] { keys("Tab"); }, "end 6 1/0 x, open 1/1", "x", &editor()},
           {[&] { keys("Tab Tab"); }, "end 6 1/0 x, open 1/1, changing, changed 2, open 2/0", "x", &editor()},
           {[&] { keys("Shift+Backtab"); }, "end 6 1/0 x, changing, changed 0, open 0/1", "x", &editor()},
           {[&] { click(*other); }, "resign x, end 6 1/0 x", "x", other},
           {[&] { click(cells(), at(3, 0)); }, "end 6 1/0 x, changing, changed 3, mouse 3/0", "x", widget},
           {[&] { click(cells(), at(2, 1)); }, "end 6 1/0 x, changing, changed 2, mouse 2/1", "x", &editor()},
           {[&] { open(2, 1); }, "end 6 1/0 x", "x", &editor()},
           {[&] { cell(1, 0).setStringValue("set"), keys("Return"); }, "", "set", widget},
           {[&] { keys("Return"), log.take(), open(1, 0), keys("Return"); }, "", "x", widget},
           {[&] { table.reloadData(); }, "", "name1", widget},
           {[&] { table.reloadDataForRowIndexes({1}, {0}); }, "", "name1", widget},
           {[&] { click(editor()), click(*button), keys("'y Return"); }, "end 6 1/0 xy", "xy", widget}}) {
    // clang-format on
    fill(100);
    other->setFocus();
    table.selectRow(1);
    edit(1, 0);
    ended.end();
    EXPECT_EQ(log.take(), ended.said);
    EXPECT_EQ(cell(1, 0).stringValue(), ended.text) << ended.said;
    EXPECT_FALSE(cell(1, 0).isEdited());
    EXPECT_TRUE(ended.focus->hasFocus()) << ended.said;
    EXPECT_EQ(isOpen(), ended.focus == &editor());
  }
  widget->setFocus();
  keys("Tab");
  EXPECT_EQ(log.take(), "resign");
}

TEST_F(Table, EnterAndF2OpenTheFirstCellOfTheSelectedRow) {
  widget->setFocus();
  keys("F2");
  EXPECT_EQ(log.take(), "");
  table.selectRow(50);
  log.take();
  for (const char* key : {"F2", "Return", "Enter"}) {
    keys(key);
    EXPECT_EQ(log.take(), "open 50/0");
    EXPECT_TRUE(cells().rect().contains(editor().geometry()));
    keys("Return");
  }
  // Behind the last cell nothing is left to open.
  table.scrollRowToVisible(99);
  open(99, 1);
  keys("Tab");
  EXPECT_FALSE(isOpen());
  EXPECT_TRUE(widget->hasFocus());
}

TEST_F(Table, AnOpenCellStaysOpenUnderAnInactiveWindowAMenuOrAPopUpAndOutOfSight) {
  auto* box = new QComboBox;
  box->setFocusPolicy(Qt::NoFocus);
  box->addItems({"a", "b"});
  window.layout()->addWidget(box);
  settle();
  const auto activate = [&] {
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    settle();
  };
  edit(1, 0);
  QWidget second;
  show(second, {80, 60});
  second.close();
  activate();
  QMenu menu;
  menu.addAction("Item");
  menu.popup(window.pos());
  settle();
  menu.close();
  choose(*box, 1);
  EXPECT_TRUE(waitUntil([&] { return editor().hasFocus(); }));
  widget->verticalScrollBar()->setValue(widget->verticalScrollBar()->maximum());
  settle();
  EXPECT_EQ(table.rowsWithViews().front(), 1);
  EXPECT_FALSE(cells().rect().intersects(editor().geometry()));
  type("y");
  EXPECT_EQ(log.take(), "");
  EXPECT_EQ(cell(1, 0).stringValue(), "xy");

  // But the focus may move behind an inactive window.
  show(second, {80, 60});
  other->setFocus();
  second.close();
  activate();
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(log.take(), "end 6 1/0 xy");
}

TEST_F(Table, AFormatterRefusesKeystrokesInItsCellOnly) {
  struct Digits final : NSFormatter {
    bool isPartialStringValid(std::string_view partial) const override {
      return partial.find_first_not_of("0123456789") == std::string_view::npos;
    }
  };
  cell(1, 0).setFormatter(std::make_unique<Digits>());
  cell(1, 0).setStringValue("no digits");
  open(1, 0);
  EXPECT_EQ(cell(1, 0).stringValue(), "no digits");
  type("1a2");
  EXPECT_EQ(cell(1, 0).stringValue(), "12");
  edit(2, 0, "free");
  EXPECT_EQ(cell(2, 0).stringValue(), "free");
}

TEST_F(Table, MayGoInItsOwnMessage) {
  struct Closer final : NSTextFieldDelegate {
    void controlTextDidBeginEditing(int) override {}
    void controlTextDidEndEditing(const TextEdit&) override { table->deleteLater(); }
    TableViewWidget* table = nullptr;
  } closer;
  closer.table = widget;
  open(1, 0);
  cell(1, 0).setDelegate(&closer);
  keys("'x Return");
}

}  // namespace tarn::test
