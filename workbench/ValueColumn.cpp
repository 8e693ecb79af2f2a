#include "workbench/ValueColumn.h"

#include <algorithm>
#include <utility>

namespace tarn {

std::vector<Bytes> ValueColumn::assign(std::vector<Bytes> rows, std::string_view title) {
  setTitle(title);
  ++revision_;
  return std::exchange(data_, std::move(rows));
}

void ValueColumn::setTitle(std::string_view title) {
  title_ = title;
  setTexts_.clear();
}

RowText ValueColumn::row(std::size_t row) const {
  const auto set = std::ranges::lower_bound(setTexts_, row, {}, &SetText::row);
  return set != setTexts_.end() && set->row == row ? set->shown : rowDisplayText(data_[row].view(), title_);
}

std::vector<std::size_t> ValueColumn::rowsWithSetText() const {
  std::vector<std::size_t> rows;
  rows.reserve(setTexts_.size());
  for (const SetText& set : setTexts_)
    rows.push_back(set.row);
  return rows;
}

void ValueColumn::setRow(std::size_t row, std::string text, Bytes bytes, bool isBase64) {
  data_[row] = std::move(bytes);
  setText(row, {std::move(text), isBase64});
}

void ValueColumn::setData(std::size_t row, Bytes bytes) {
  RowText shown = this->row(row);
  data_[row] = std::move(bytes);
  setText(row, std::move(shown));
}

void ValueColumn::insertRow(std::size_t row) {
  ++revision_;
  data_.insert(data_.begin() + static_cast<std::ptrdiff_t>(row), Bytes());
  for (auto set = std::ranges::lower_bound(setTexts_, row, {}, &SetText::row); set != setTexts_.end(); ++set)
    ++set->row;
  setText(row, {});
}

void ValueColumn::removeRows(const std::vector<std::size_t>& rows) {
  ++revision_;
  eraseRows(data_, rows);
  std::erase_if(setTexts_, [&](const SetText& set) { return std::binary_search(rows.begin(), rows.end(), set.row); });
  for (SetText& set : setTexts_) {
    set.row -= static_cast<std::size_t>(std::lower_bound(rows.begin(), rows.end(), set.row) - rows.begin());
  }
}

// On record only where the bytes alone would show otherwise.
void ValueColumn::setText(std::size_t row, RowText shown) {
  const auto set = std::ranges::lower_bound(setTexts_, row, {}, &SetText::row);
  const bool isSet = set != setTexts_.end() && set->row == row;
  if (shown == rowDisplayText(data_[row].view(), title_)) {
    if (isSet) setTexts_.erase(set);
  } else if (isSet) {
    set->shown = std::move(shown);
  } else {
    setTexts_.insert(set, {row, std::move(shown)});
  }
}

}  // namespace tarn
