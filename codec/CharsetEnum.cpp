#include "codec/CharsetEnum.h"

#include "codec/CharsetTable.h"

namespace tarn {

std::string charsetName(CharsetEnum charset) {
  return std::string(rowOf(charset).name);
}

std::vector<std::string> charsetNames() {
  std::vector<std::string> names;
  names.reserve(std::size(charsetTable));
  for (const CharsetRow& row : charsetTable)
    names.emplace_back(row.name);
  return names;
}

}  // namespace tarn
