#include "workbench/value/LoadedRows.h"

#include "platform/foundation/Utf8.h"

#include <numeric>
#include <utility>

namespace tarn {

namespace {

LoadedRows pairsOf(std::vector<Bytes> flat) {
  LoadedRows rows;
  rows.columns.resize(2);
  rows.count = flat.size() / 2;
  for (std::vector<Bytes>& column : rows.columns)
    column.reserve(rows.count);
  for (std::size_t i = 0; i + 1 < flat.size(); i += 2) {
    rows.bytes += flat[i].size() + flat[i + 1].size();
    rows.columns[0].push_back(std::move(flat[i]));
    rows.columns[1].push_back(std::move(flat[i + 1]));
  }
  return rows;
}

LoadedRows scoredRowsOf(std::vector<Bytes> flat) {
  LoadedRows rows;
  rows.columns.resize(1);
  rows.count = flat.size();
  rows.columns[0].reserve(flat.size() / 2);
  rows.scores.reserve(flat.size() / 2);
  for (std::size_t i = 0; i + 1 < flat.size(); i += 2) {
    rows.bytes += flat[i].size() + flat[i + 1].size();
    rows.isComplete = isValidUtf8(flat[i + 1].view());
    if (!rows.isComplete) break;
    rows.columns[0].push_back(std::move(flat[i]));
    rows.scores.emplace_back(flat[i + 1].view());
  }
  return rows;
}

}  // namespace

std::size_t byteCount(const std::vector<Bytes>& rows) {
  return std::accumulate(rows.begin(), rows.end(), std::size_t{0},
                         [](std::size_t sum, const Bytes& row) { return sum + row.size(); });
}

LoadedRows loadedRows(ValueType type, std::vector<Bytes> reply) {
  if (type == ValueType::hash) return pairsOf(std::move(reply));
  if (type == ValueType::sortedSet) return scoredRowsOf(std::move(reply));
  LoadedRows rows;
  rows.bytes = byteCount(reply);
  rows.count = reply.size();
  rows.columns.push_back(std::move(reply));
  return rows;
}

}  // namespace tarn
