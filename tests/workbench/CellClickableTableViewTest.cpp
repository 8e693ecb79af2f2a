#include "platform/appkit/table/TableViewWidget.h"
#include "workbench/CellClickableTableView.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

class CellClickableTableViewTest : public ::testing::Test, public ClickableTableViewDelegate {
protected:
  void didDoubleClick(NSTableView&, int, int column) override { doubleClicked = column; }
  void commitEditableCells(NSTableView&) override { ++commits; }

  int doubleClicked = -1;
  int commits = 0;
  double now = 0;
  TableViewWidget widget;
  NSTableView table{&widget};
  CellClickableTableView clickable{table, *this, [this] { return now; }};
};

TEST_F(CellClickableTableViewTest, TwoClicksOnOneRowWithinTheTimeAreADoubleClick) {
  struct Click {
    double time;
    int row;
    int column;
    bool isDouble;
  };
  // The very first click is none, and one beside the cells counts for nothing.
  const Click clicks[] = {{1000.0, 0, 0, false}, {1001.1, 0, 1, true},  {1002.2, 0, 0, true},    {1003.5, 0, 0, false},
                          {1003.6, 4, 0, false}, {1003.7, 0, 0, false}, {1003.8, -1, -1, false}, {1003.9, 0, 2, true}};
  for (const Click& click : clicks) {
    now = click.time;
    doubleClicked = -1;
    clickable.mouseDown(table, click.row, click.column);
    EXPECT_EQ(doubleClicked, click.isDouble ? click.column : -1) << click.time;
  }
  clickable.resignFirstResponder(table);
  EXPECT_EQ(commits, 1);
}

}  // namespace
}  // namespace tarn
