#pragma once

#include "platform/appkit/NSTableView.h"

#include <functional>

namespace tarn {

// What a table with cells that open by a double click tells its controller.
class ClickableTableViewDelegate {
public:
  virtual ~ClickableTableViewDelegate() = default;

  virtual void didDoubleClick(NSTableView& table, int row, int column) = 0;
  // The focus leaves the table: what is typed in its cells goes into the rows.
  virtual void commitEditableCells(NSTableView& table) = 0;
};

// Stands in front of a table and makes a double click of two clicks on one row, whatever the columns, within 1.2
// seconds; each further one that comes as soon counts as another. Main queue only.
class CellClickableTableView final : public NSTableViewResponder {
public:
  // Seconds since 1970.
  using Clock = std::function<double()>;

  // Becomes the table's responder. Both outlive it.
  CellClickableTableView(NSTableView& table, ClickableTableViewDelegate& delegate);
  // With a clock in place of the system's.
  CellClickableTableView(NSTableView& table, ClickableTableViewDelegate& delegate, Clock clock);
  CellClickableTableView(const CellClickableTableView&) = delete;
  CellClickableTableView& operator=(const CellClickableTableView&) = delete;
  ~CellClickableTableView() override;

  void mouseDown(NSTableView& table, int row, int column) override;
  void resignFirstResponder(NSTableView& table) override;

private:
  NSTableView& table_;
  ClickableTableViewDelegate& delegate_;
  Clock clock_;
  double lastClickedTime_ = 0;
  int lastClickedRow_ = 0;
};

}  // namespace tarn
