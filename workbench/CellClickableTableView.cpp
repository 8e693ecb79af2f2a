#include "workbench/CellClickableTableView.h"

#include <chrono>
#include <utility>

namespace tarn {

namespace {

constexpr double doubleClickSeconds = 1.2;

double secondsSince1970() {
  return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

}  // namespace

CellClickableTableView::CellClickableTableView(NSTableView& table, ClickableTableViewDelegate& delegate)
    : CellClickableTableView(table, delegate, secondsSince1970) {}

CellClickableTableView::CellClickableTableView(NSTableView& table, ClickableTableViewDelegate& delegate, Clock clock)
    : table_(table), delegate_(delegate), clock_(std::move(clock)) {
  table_.setResponder(this);
}

CellClickableTableView::~CellClickableTableView() {
  table_.setResponder(nullptr);
}

void CellClickableTableView::mouseDown(NSTableView& table, int row, int column) {
  if (row < 0 || column < 0) return;
  const double now = clock_();
  const bool isDouble = row == lastClickedRow_ && now - lastClickedTime_ < doubleClickSeconds;
  lastClickedTime_ = now;
  lastClickedRow_ = row;
  if (isDouble) delegate_.didDoubleClick(table, row, column);
}

void CellClickableTableView::resignFirstResponder(NSTableView& table) {
  delegate_.commitEditableCells(table);
}

}  // namespace tarn
