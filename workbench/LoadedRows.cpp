#include "workbench/LoadedRows.h"

#include "codec/TextCodec.h"

#include <numeric>
#include <utility>

namespace tarn {

std::size_t byteCount(const std::vector<Bytes>& rows) {
  return std::accumulate(rows.begin(), rows.end(), std::size_t{0},
                         [](std::size_t sum, const Bytes& row) { return sum + row.size(); });
}

HashRows hashRows(std::vector<Bytes> flat) {
  HashRows rows;
  rows.fields.reserve(flat.size() / 2);
  rows.values.reserve(flat.size() / 2);
  for (std::size_t i = 0; i + 1 < flat.size(); i += 2) {
    rows.bytes += flat[i].size() + flat[i + 1].size();
    rows.fields.push_back(std::move(flat[i]));
    rows.values.push_back(std::move(flat[i + 1]));
  }
  return rows;
}

SortedSetRows sortedSetRows(std::vector<Bytes> flat) {
  SortedSetRows rows;
  rows.elements = flat.size();
  rows.members.reserve(flat.size() / 2);
  rows.scores.reserve(flat.size() / 2);
  for (std::size_t i = 0; i + 1 < flat.size(); i += 2) {
    rows.bytes += flat[i].size() + flat[i + 1].size();
    std::optional<std::string> score = bytesToText(flat[i + 1].view(), CharsetEnum::utf8);
    if (!score) {
      rows.complete = false;
      break;
    }
    rows.members.push_back(std::move(flat[i]));
    rows.scores.push_back(std::move(*score));
  }
  return rows;
}

}  // namespace tarn
