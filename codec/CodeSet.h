#pragma once

#include "codec/Utf8Characters.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace tarn {

// One of the sets between which the escape sequences of ISO 2022 switch: its characters have codes of one byte, or of
// two from 0x21 to 0x7E. Large: made once and kept.
class CodeSet final {
public:
  using Code = std::uint16_t;
  static constexpr Code noCode = 0xFFFF;

  // ASCII without these characters.
  static CodeSet asciiWithout(std::string_view lacking);
  // What iconv has in this set behind the prefix, two bytes of 0x80 more than the code.
  static CodeSet ofPairs(const char* system, std::string_view prefix = {});

  void add(Code code, char16_t character);

  int bytesPerCode() const { return bytesPerCode_; }
  // noCharacter and noCode where there is none.
  char16_t characterOf(Code code) const { return code < characters_.size() ? characters_[code] : noCharacter; }
  Code codeOf(char16_t character) const { return codes_[character]; }

private:
  explicit CodeSet(int bytesPerCode);

  int bytesPerCode_;
  std::array<char16_t, 0x8000> characters_;
  std::array<Code, 0x10000> codes_;
};

}  // namespace tarn
