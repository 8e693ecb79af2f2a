#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn {

// Characters of UTF-8 one by one, for the sets that are converted here; these have none above U+FFFF. All pure.

// Stands for no character of any set.
inline constexpr char16_t noCharacter = 0xFFFF;

inline void appendCharacter(std::string& text, char16_t character) {
  if (character < 0x80) {
    text += static_cast<char>(character);
    return;
  }
  if (character < 0x800) {
    text += static_cast<char>(0xC0 | character >> 6);
  } else {
    text += static_cast<char>(0xE0 | character >> 12);
    text += static_cast<char>(0x80 | (character >> 6 & 0x3F));
  }
  text += static_cast<char>(0x80 | (character & 0x3F));
}

// The character of this valid text that begins at `at`, which then stands behind it; noCharacter for one above U+FFFF.
inline char16_t takeCharacter(std::string_view text, std::size_t& at) {
  const auto next = [&] { return static_cast<unsigned>(text[at++]) & 0xFFU; };
  const unsigned lead = next();
  if (lead < 0x80) return static_cast<char16_t>(lead);
  unsigned character = lead & (lead < 0xE0 ? 0x1F : 0x0F);
  const int following = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
  for (int i = 0; i < following; ++i)
    character = character << 6 | (next() & 0x3F);
  return following < 3 ? static_cast<char16_t>(character) : noCharacter;
}

}  // namespace tarn
