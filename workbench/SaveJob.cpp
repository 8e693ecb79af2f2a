#include "workbench/SaveJob.h"

#include "workbench/LoadedRows.h"

namespace tarn {

RowsToSave::RowsToSave(ValueColumn& column, std::string_view title, bool translate)
    : column_(&column), revision_(column.revision()), changes_(rowsChangedByConversion(column, title, translate)) {}

void RowsToSave::convert() {
  if (changes_.empty()) return;
  const bool isOnShow = column_->revision() == revision_;
  for (ConvertedRow& change : changes_) {
    if (isOnShow) column_->setData(change.row, change.bytes);
    if (copy_) (*copy_)[change.row] = std::move(change.bytes);
  }
  changes_.clear();
}

void SaveJob::takeCopies() {
  for (RowsToSave& column : columns)
    column.takeCopy();
  if (formScores != nullptr) scoreCopy = *formScores;
}

bool SaveJob::write(ServerItem& server) const {
  if (type == "String") return server.setValue(key, value, ttl);
  if (!server.deleteKey(key)) return false;
  const std::vector<Bytes>& rows = columns.front().data();
  if (type == "Set") return server.addSetMembers(key, rows, ttl);
  if (type == "List") return server.pushListItems(key, rows, ttl);
  if (type == "Hash") return server.setHashFields(key, rows, columns.back().data(), ttl);
  return server.addSortedSetMembers(key, scores(), rows, ttl);
}

std::size_t SaveJob::dataSize() const {
  // A fixed number stands for each score, whatever its length.
  constexpr std::size_t bytesOfScore = 4;
  if (type == "String") return value.size();
  std::size_t size = 0;
  for (const RowsToSave& column : columns)
    size += byteCount(column.data());
  return type == "SortedSet" ? size + bytesOfScore * columns.front().data().size() : size;
}

}  // namespace tarn
