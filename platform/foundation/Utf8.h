#pragma once

#include <cstddef>
#include <string_view>

namespace tarn {

// All pure; any thread.

bool isAscii(std::string_view bytes);
constexpr bool isAscii(char byte) {
  return static_cast<unsigned char>(byte) < 0x80U;
}

// As Unicode defines it: shortest forms only, no surrogates, nothing above U+10FFFF, nothing cut off.
bool isValidUtf8(std::string_view bytes);

// True for each byte of a character but its first.
constexpr bool isFollowingByte(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// The beginning of a text, at most this many bytes, never ending inside a character.
std::string_view utf8Prefix(std::string_view text, std::size_t maxBytes);

}  // namespace tarn
