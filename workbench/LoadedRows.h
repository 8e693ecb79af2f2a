#pragma once

#include "platform/foundation/Bytes.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tarn {

// What the replies of the value commands hold, taken apart by column. All pure; any thread, so that a million rows are
// taken apart where they were read.

std::size_t byteCount(const std::vector<Bytes>& rows);

struct HashRows {
  std::vector<Bytes> fields;
  std::vector<Bytes> values;
  std::size_t bytes = 0;
};

// Of field, value, field, value. An odd last element is left out.
HashRows hashRows(std::vector<Bytes> flat);

struct SortedSetRows {
  std::vector<Bytes> members;
  std::vector<std::string> scores;
  std::size_t bytes = 0;
  // Elements of the flat reply.
  std::size_t elements = 0;
  // False if a score is no text in UTF-8: the rows are those in front of it.
  bool complete = true;
};

// Of member, score, member, score. An odd last element is left out of the rows and the bytes.
SortedSetRows sortedSetRows(std::vector<Bytes> flat);

}  // namespace tarn
