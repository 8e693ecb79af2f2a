#include "workbench/save/RowsToSave.h"

#include <unordered_map>
#include <utility>

namespace tarn {

RowsToSave::RowsToSave(ValueRows& rows, TextForm form) : rows_(&rows), revision_(rows.revision()) {
  for (std::size_t column = 0; column < rows.columns().size(); ++column)
    addChanges(column, form);
}

// Rows that can't be told to stay from a look at their bytes are converted for it.
void RowsToSave::addChanges(std::size_t columnIndex, TextForm form) {
  const ValueColumn& column = rows_->columns()[columnIndex];
  const std::vector<std::size_t> setRows = column.rowsWithSetText();
  auto nextSet = setRows.begin();
  const bool showsForm = column.form().charset == form.charset && column.form().isBase64 == form.isBase64;
  for (std::size_t row = 0; row < column.rowCount(); ++row) {
    const bool isSet = nextSet != setRows.end() && *nextSet == row;
    if (isSet) ++nextSet;
    const Bytes& bytes = column.data()[row];
    if (!isSet && showsForm && standsForItself(bytes.view(), form)) continue;
    const std::string text = column.text(row);
    std::optional<Bytes> converted = bytesOfRow(text, form);
    if (!converted || *converted == bytes) continue;
    changes_.push_back({columnIndex, row, *std::move(converted), conversionReason(text, form)});
  }
}

const std::vector<Bytes>& RowsToSave::column(std::size_t column) const {
  return copy_ ? copy_->columns[column] : rows_->columns()[column].data();
}

std::size_t RowsToSave::byteSize() const {
  std::size_t size = 0;
  for (std::size_t index = 0; index < rows_->columns().size(); ++index)
    size += byteCount(column(index));
  return size;
}

// As it is once the changes are made.
std::vector<std::string_view> RowsToSave::convertedColumn(std::size_t index) const {
  std::vector<std::string_view> bytes;
  bytes.reserve(column(index).size());
  for (const Bytes& row : column(index))
    bytes.push_back(row.view());
  for (const ConvertedRow& change : changes_) {
    if (change.column == index) bytes[change.row] = change.bytes.view();
  }
  return bytes;
}

std::optional<Bytes> RowsToSave::doubledField() const {
  const std::vector<std::string_view> fields = convertedColumn(0);
  const std::vector<std::string_view> values = convertedColumn(1);
  std::unordered_map<std::string_view, std::string_view> valueOf;
  valueOf.reserve(fields.size());
  for (std::size_t row = 0; row < fields.size(); ++row) {
    const auto [found, isNew] = valueOf.emplace(fields[row], values[row]);
    if (!isNew && found->second != values[row]) return Bytes(fields[row]);
  }
  return std::nullopt;
}

void RowsToSave::takeCopy() {
  if (copy_) return;
  copy_.emplace();
  for (const ValueColumn& column : rows_->columns())
    copy_->columns.push_back(column.data());
  copy_->scores = rows_->scores();
}

void RowsToSave::convert() {
  const bool isInForm = isOnShow();
  for (ConvertedRow& change : changes_) {
    if (isInForm) rows_->setData(change.column, change.row, change.bytes);
    if (copy_) copy_->columns[change.column][change.row] = std::move(change.bytes);
  }
  changes_.clear();
}

}  // namespace tarn
