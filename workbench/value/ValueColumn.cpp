#include "workbench/value/ValueColumn.h"

#include "workbench/text/TypedText.h"

#include <algorithm>
#include <utility>

namespace tarn {

std::vector<Bytes> ValueColumn::assign(std::vector<Bytes> rows, TextForm form) {
  setForm(form);
  return std::exchange(data_, std::move(rows));
}

void ValueColumn::setForm(TextForm form) {
  form_ = {form.charset, form.isBase64, false};
  setTexts_.clear();
}

std::string ValueColumn::text(std::size_t row) const {
  const auto set = std::ranges::lower_bound(setTexts_, row, {}, &SetText::row);
  return set != setTexts_.end() && set->row == row ? set->text : rowText(data_[row].view(), form_);
}

std::vector<std::size_t> ValueColumn::rowsWithSetText() const {
  std::vector<std::size_t> rows;
  rows.reserve(setTexts_.size());
  for (const SetText& set : setTexts_)
    rows.push_back(set.row);
  return rows;
}

void ValueColumn::setRow(std::size_t row, std::string text, Bytes bytes) {
  data_[row] = std::move(bytes);
  setText(row, std::move(text));
}

void ValueColumn::setData(std::size_t row, Bytes bytes) {
  std::string shown = text(row);
  setRow(row, std::move(shown), std::move(bytes));
}

void ValueColumn::insertRow(std::size_t row) {
  data_.insert(data_.begin() + static_cast<std::ptrdiff_t>(row), Bytes());
  for (auto set = std::ranges::lower_bound(setTexts_, row, {}, &SetText::row); set != setTexts_.end(); ++set)
    ++set->row;
  setText(row, {});
}

void ValueColumn::removeRow(std::size_t row) {
  data_.erase(data_.begin() + static_cast<std::ptrdiff_t>(row));
  std::erase_if(setTexts_, [row](const SetText& set) { return set.row == row; });
  for (auto set = std::ranges::lower_bound(setTexts_, row, {}, &SetText::row); set != setTexts_.end(); ++set)
    --set->row;
}

// On record only where the bytes alone would show otherwise.
void ValueColumn::setText(std::size_t row, std::string text) {
  const auto set = std::ranges::lower_bound(setTexts_, row, {}, &SetText::row);
  const bool isSet = set != setTexts_.end() && set->row == row;
  if (text == rowText(data_[row].view(), form_)) {
    if (isSet) setTexts_.erase(set);
  } else if (isSet) {
    set->text = std::move(text);
  } else {
    setTexts_.insert(set, {row, std::move(text)});
  }
}

}  // namespace tarn
