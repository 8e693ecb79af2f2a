#include "codec/CodeSet.h"

#include "platform/foundation/CharsetConverter.h"

#include <cstddef>
#include <string>

namespace tarn {

CodeSet::CodeSet(int bytesPerCode) : bytesPerCode_(bytesPerCode) {
  characters_.fill(noCharacter);
  codes_.fill(noCode);
}

CodeSet CodeSet::asciiWithout(std::string_view lacking) {
  CodeSet set(1);
  for (Code code = 0; code < 0x80; ++code) {
    if (lacking.find(static_cast<char>(code)) == std::string_view::npos) set.add(code, code);
  }
  return set;
}

CodeSet CodeSet::ofPairs(const char* system, std::string_view prefix) {
  CodeSet set(2);
  for (unsigned lead = 0x21; lead <= 0x7E; ++lead) {
    for (unsigned trail = 0x21; trail <= 0x7E; ++trail) {
      std::string bytes(prefix);
      bytes += static_cast<char>(lead | 0x80);
      bytes += static_cast<char>(trail | 0x80);
      std::size_t at = 0;
      if (const auto text = convertToUtf8(bytes, system))
        set.add(static_cast<Code>(lead << 8 | trail), takeCharacter(*text, at));
    }
  }
  return set;
}

void CodeSet::add(Code code, char16_t character) {
  characters_[code] = character;
  codes_[character] = code;
}

}  // namespace tarn
