#include "workbench/save/RowsToSave.h"

#include <utility>

namespace tarn {

namespace {

// Rows that can't be told to stay from a look at their bytes are converted for it.
void addChanges(const ValueRows& rows, std::size_t columnIndex, TextForm form, std::vector<ConvertedRow>& changes) {
  const ValueColumn& column = rows.columns()[columnIndex];
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
    changes.push_back({columnIndex, row, *std::move(converted), conversionReason(text, form)});
  }
}

}  // namespace

RowsToSave::RowsToSave(ValueRows& rows, TextForm form) : rows_(&rows), revision_(rows.revision()) {
  for (std::size_t column = 0; column < rows.columns().size(); ++column)
    addChanges(rows, column, form, changes_);
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

void RowsToSave::takeCopy() {
  copy_.emplace();
  for (const ValueColumn& column : rows_->columns())
    copy_->columns.push_back(column.data());
  copy_->scores = rows_->scores();
}

void RowsToSave::convert() {
  const bool isOnShow = rows_->revision() == revision_;
  for (ConvertedRow& change : changes_) {
    if (isOnShow) rows_->setData(change.column, change.row, change.bytes);
    if (copy_) copy_->columns[change.column][change.row] = std::move(change.bytes);
  }
  changes_.clear();
}

}  // namespace tarn
