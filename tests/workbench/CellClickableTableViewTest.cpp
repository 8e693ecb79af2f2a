#include "workbench/CellClickableTableView.h"

#include <gtest/gtest.h>

#include "platform/appkit/TableViewWidget.h"

namespace tarn {
namespace {

class CellClickableTableViewTest : public ::testing::Test, public ClickableTableViewDelegate {
protected:
  void didDoubleClick(NSTableView&, int row, int column) override { clicks.emplace_back(row, column); }
  void commitEditableCells(NSTableView&) override { ++commits; }

  void clickAt(double time, int row, int column = 0) {
    now = time;
    clickable.mouseDown(table, row, column);
  }

  std::vector<std::pair<int, int>> clicks;
  int commits = 0;
  double now = 0;
  TableViewWidget widget;
  NSTableView table{&widget};
  CellClickableTableView clickable{table, *this, [this] { return now; }};
};

using Clicks = std::vector<std::pair<int, int>>;

TEST_F(CellClickableTableViewTest, TwoClicksOnOneRowWithinTheTimeAreADoubleClick) {
  clickAt(1000.0, 3);
  clickAt(1001.1, 3, 1);
  EXPECT_EQ(clicks, (Clicks{{3, 1}}));
  clickAt(1002.2, 3);
  EXPECT_EQ(clicks, (Clicks{{3, 1}, {3, 0}}));
  clickAt(1003.5, 3);
  clickAt(1003.6, 4);
  clickAt(1003.7, 3);
  EXPECT_EQ(clicks.size(), 2U);
}

TEST_F(CellClickableTableViewTest, TheVeryFirstClickIsNone) {
  clickAt(1000.0, 0);
  EXPECT_EQ(clicks, Clicks());
}

TEST_F(CellClickableTableViewTest, AClickBesideTheCellsCountsForNothing) {
  clickAt(1000.0, 3);
  clickAt(1000.1, -1, -1);
  clickAt(1000.2, 3);
  EXPECT_EQ(clicks, (Clicks{{3, 0}}));
  clickable.resignFirstResponder(table);
  EXPECT_EQ(commits, 1);
}

}  // namespace
}  // namespace tarn
