#include "platform/appkit/table/TableCells.h"

namespace tarn {

void TableCells::setColumnCount(int count) {
  columnCount_ = count;
  rows_.clear();
  spare_.clear();
}

void TableCells::show(int first, int last, int kept) {
  for (auto row = rows_.begin(); row != rows_.end();) {
    const auto next = std::next(row);
    if ((row->first < first || row->first > last) && row->first != kept) recycle(row);
    row = next;
  }
  for (int row = first; row <= last; ++row)
    make(row);
}

void TableCells::refill(int count) {
  for (auto row = rows_.lower_bound(count); row != rows_.end();) {
    const auto next = std::next(row);
    recycle(row);
    row = next;
  }
  for (const int row : rows()) {
    for (int column = 0; column < columnCount_; ++column)
      refill(row, column);
  }
}

void TableCells::refill(int row, int column) {
  if (TableCell* cell = at(row, column)) fill(*cell, row);
}

TableCell* TableCells::at(int row, int column) const {
  const auto found = rows_.find(row);
  if (found == rows_.end() || column < 0 || column >= columnCount_) return nullptr;
  return found->second[static_cast<std::size_t>(column)].get();
}

void TableCells::make(int row) {
  if (rows_.contains(row)) return;
  Row cells;
  if (!spare_.empty()) {
    cells = std::move(spare_.back());
    spare_.pop_back();
  }
  for (int column = static_cast<int>(cells.size()); column < columnCount_; ++column) {
    cells.push_back(std::make_unique<TableCell>(host_, column));
  }
  rows_.emplace(row, std::move(cells));
  for (int column = 0; column < columnCount_; ++column)
    refill(row, column);
}

std::vector<int> TableCells::rows() const {
  std::vector<int> rows;
  rows.reserve(rows_.size());
  for (const auto& row : rows_)
    rows.push_back(row.first);
  return rows;
}

void TableCells::fill(TableCell& cell, int row) const {
  cell.reset();
  cell.setRow(row);
  fill_(cell);
}

void TableCells::recycle(std::map<int, Row>::iterator row) {
  // The texts go at once: a recycled cell may have shown a value of many megabytes.
  for (const auto& cell : row->second)
    cell->reset();
  spare_.push_back(std::move(row->second));
  rows_.erase(row);
}

}  // namespace tarn
