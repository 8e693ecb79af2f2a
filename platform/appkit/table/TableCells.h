#pragma once

#include "platform/appkit/table/TableCell.h"

#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace tarn {

// The cells of the rows in sight. Rows that leave give their cells to those that come.
class TableCells final {
public:
  using Fill = std::function<void(TableCell&)>;

  // The host outlives the cells. `fill` sets a cell that has just been reset.
  TableCells(TableCellHost& host, Fill fill) : host_(host), fill_(std::move(fill)) {}

  // Drops all cells.
  void setColumnCount(int count);

  // Makes the rows from `first` to `last` (none if last < first) have cells, filling those that come into sight, and
  // takes those of all others but `kept`.
  void show(int first, int last, int kept);

  // Takes the cells of the rows from `count` on and fills all others anew.
  void refill(int count);

  // Fills one cell anew, if there is one.
  void refill(int row, int column);

  // Nothing where the row has no cells, or the column doesn't exist.
  TableCell* at(int row, int column) const;
  // Makes the row's cells if it has none.
  void make(int row);
  std::vector<int> rows() const;

  // Fills `cell` as if it came into sight in the given row.
  void fill(TableCell& cell, int row) const;

private:
  using Row = std::vector<std::unique_ptr<TableCell>>;

  void recycle(std::map<int, Row>::iterator row);

  TableCellHost& host_;
  Fill fill_;
  int columnCount_ = 0;
  std::map<int, Row> rows_;
  std::vector<Row> spare_;
};

}  // namespace tarn
