#pragma once

#include "platform/foundation/Bytes.h"
#include "workbench/value/ValueType.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tarn {

std::size_t byteCount(const std::vector<Bytes>& rows);

// What the reply to a value command holds, taken apart by column.
struct LoadedRows {
  // Elements, members, or fields and values.
  std::vector<std::vector<Bytes>> columns;
  // Of a sorted set, as the server wrote them.
  std::vector<std::string> scores;
  std::size_t bytes = 0;
  // Elements, members and scores, or pairs of field and value.
  std::size_t count = 0;
  // False if a score is no text in UTF-8: the rows are those in front of it.
  bool isComplete = true;
};

// Of a list, set, hash or sorted set: of the last two the reply is flat. An odd last element is no row. Pure; any
// thread, so that a million rows are taken apart where they were read.
LoadedRows loadedRows(ValueType type, std::vector<Bytes> reply);

}  // namespace tarn
