#include "platform/appkit/table/CellText.h"
#include "platform/foundation/Utf8.h"
#include "tests/appkit/TableFixture.h"

#include <QAccessible>
#include <QFontMetrics>

#include <utility>

namespace tarn::test {
namespace {

using TableView = TableFixture;

TEST_F(TableView, MakesCellsForTheRowsInSightOnly) {
  fill(10'000'000);
  const std::size_t inSight = static_cast<std::size_t>(cells().height() / 18 + 2);
  EXPECT_LE(table.rowsWithViews().size(), inSight);
  EXPECT_EQ(table.rowsWithViews().front(), 0);
  EXPECT_LE(fills, static_cast<int>(2 * inSight));
  EXPECT_EQ(cell(0, 0).stringValue(), "name0");
  EXPECT_EQ(table.viewAtColumn(0, 5'000'000, false), nullptr);

  cell(0, 0).setEditable(true);
  cell(0, 0).setTag(6);
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
}

TEST_F(TableView, MakesACellOutOfSightOnDemand) {
  fill(1000);
  NSTableCellView* far = table.viewAtColumn(1, 500, true);
  ASSERT_NE(far, nullptr);
  EXPECT_EQ(far->stringValue(), "1500");
  table.scrollRowToVisible(500);
  EXPECT_EQ(table.viewAtColumn(1, 500, false), far);
  for (const auto& [row, column] : {std::pair{1000, 1}, {0, 2}, {-1, 0}})
    EXPECT_EQ(table.viewAtColumn(column, row, true), nullptr);
}

TEST_F(TableView, ReloadKeepsTheValidSelectionAndTellsNobody) {
  fill(50);
  table.selectRow(9);
  take();
  for (int row = 0; row < 2; ++row)
    texts[{row, 0}] = texts[{row, 1}] = "changed";
  table.reloadDataForRowIndexes({1, 99}, {1, 99});
  EXPECT_EQ(cell(1, 1).stringValue(), "changed");
  EXPECT_EQ(cell(1, 0).stringValue(), "name1");
  EXPECT_EQ(cell(0, 1).stringValue(), "10");
  fill(10);
  EXPECT_EQ(cell(0, 0).stringValue(), "changed");
  EXPECT_EQ(table.selectedRow(), 9);
  fill(9);
  EXPECT_EQ(table.selectedRow(), -1);
  fill(0);
  EXPECT_TRUE(table.rowsWithViews().empty());
  EXPECT_EQ(take(), Log{});
}

TEST_F(TableView, TellsEachChangeOfTheSelectionOnce) {
  fill(100);
  table.selectRow(3);
  EXPECT_EQ(take(), Log{"changed 3"});
  table.selectRow(3);
  EXPECT_EQ(take(), Log{});
  table.selectRow(4);
  EXPECT_EQ(take(), Log{"changed 4"});
  EXPECT_EQ(table.selectedRowIndexes(), std::vector<int>{4});
  table.selectRow(100);
  EXPECT_EQ(take(), Log{});
  table.deselectAll();
  EXPECT_EQ(take(), Log{"changed -1"});

  click(cells(), at(2, 0));
  EXPECT_EQ(take(), (Log{"changing 2", "changed 2", "mouse 2,0"}));
  click(cells(), at(2, 0));
  EXPECT_EQ(take(), Log{"mouse 2,0"});
  click(cells(), at(2, 0), Qt::LeftButton, Qt::ControlModifier);
  EXPECT_EQ(take(), (Log{"changing -1", "changed -1", "mouse 2,0"}));
  fill(2);
  click(cells(), QPoint(30, 100));
  EXPECT_EQ(take(), Log{"mouse -1,-1"});
  EXPECT_EQ(table.selectedRow(), -1);
}

TEST_F(TableView, MovesTheSelectionByKeyboard) {
  fill(100);
  widget->setFocus();
  press(Qt::Key_Down);
  press(Qt::Key_Down);
  press(Qt::Key_Up);
  press(Qt::Key_Up);
  EXPECT_EQ(take(), (Log{"changing 0", "changed 0", "changing 1", "changed 1", "changing 0", "changed 0"}));
  press(Qt::Key_End);
  EXPECT_EQ(take(), (Log{"changing 99", "changed 99"}));
  EXPECT_EQ(table.rowsWithViews().back(), 99);
  press(Qt::Key_PageUp);
  EXPECT_LT(table.selectedRow(), 99);
  press(Qt::Key_Home);
  EXPECT_EQ(table.selectedRow(), 0);
  fill(0);
  take();
  press(Qt::Key_Down);
  EXPECT_EQ(take(), Log{});
}

TEST_F(TableView, ColumnsHaveTheirWidthsAndLimits) {
  const QHeaderView& header = widget->header();
  const double usable = cells().width();
  for (const auto& [column, width] : {std::pair{0, 280}, {1, 120}}) {
    table.tableColumn(column).setMaxWidth(width);
    table.tableColumn(column).setWidth(width);
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

TEST_F(TableView, CellsKeepTheExactText) {
  using namespace std::string_literals;
  const std::string text =
      "\xEF\xBB\xBF"
      "a\r\n\t\0b\xC2\xA0\xE2\x80\xA8\xEF\xB7\x90\xEF\xBF\xBC\xF0\x9F\x98\x80"s;
  texts[{0, 0}] = text;
  fill(1);
  open(0, 0);
  EXPECT_EQ(cell(0, 0).stringValue(), text);
  press(Qt::Key_End);
  type("!");
  press(Qt::Key_Return);
  EXPECT_EQ(cell(0, 0).stringValue(), text + "!");
}

TEST(CellText, PaintsNoMoreThanFits) {
  const QFontMetrics metrics{QFont()};
  const std::string huge(100'000'000, 'x');
  const QString shown = elidedLine(huge, metrics, 300);
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

TEST_F(TableView, ScreenReadersFindRowsAndCells) {
  fill(1000);
  QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
  ASSERT_NE(interface, nullptr);
  EXPECT_EQ(interface->role(), QAccessible::Table);
  QAccessibleTableInterface* spoken = interface->tableInterface();
  ASSERT_NE(spoken, nullptr);
  EXPECT_EQ(spoken->rowCount(), 1000);
  EXPECT_EQ(spoken->cellAt(0, 0)->text(QAccessible::Name), "name0");
  EXPECT_EQ(spoken->cellAt(700, 1)->text(QAccessible::Name), "1700");
  EXPECT_EQ(spoken->cellAt(1000, 0), nullptr);
  EXPECT_EQ(interface->indexOfChild(interface->child(3)), 3);
  EXPECT_TRUE(spoken->selectRow(4));
  EXPECT_EQ(table.selectedRow(), 4);
  EXPECT_TRUE(spoken->cellAt(4, 1)->state().selected);
  EXPECT_FALSE(spoken->cellAt(5, 1)->state().selected);
}

}  // namespace
}  // namespace tarn::test
