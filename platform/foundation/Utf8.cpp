#include "platform/foundation/Utf8.h"

#include <cstdint>
#include <cstring>

namespace tarn {
namespace {

// The end of the plain ASCII that begins at `from`.
std::size_t endOfAscii(std::string_view bytes, std::size_t from) {
  static constexpr std::uint64_t highBits = 0x8080808080808080U;
  while (from + sizeof(std::uint64_t) <= bytes.size()) {
    std::uint64_t chunk = 0;
    std::memcpy(&chunk, bytes.data() + from, sizeof chunk);
    if ((chunk & highBits) != 0) break;
    from += sizeof chunk;
  }
  while (from < bytes.size() && static_cast<unsigned char>(bytes[from]) < 0x80)
    ++from;
  return from;
}

// The length of the character that begins with this non-ASCII byte; 0 if none does.
std::size_t lengthFrom(unsigned char lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

bool isSecondByte(unsigned char lead, unsigned char second) {
  switch (lead) {
    case 0xE0:
      return second >= 0xA0 && second <= 0xBF;
    case 0xED:
      return second >= 0x80 && second <= 0x9F;
    case 0xF0:
      return second >= 0x90 && second <= 0xBF;
    case 0xF4:
      return second >= 0x80 && second <= 0x8F;
    default:
      return second >= 0x80 && second <= 0xBF;
  }
}

}  // namespace

bool isAscii(std::string_view bytes) {
  return endOfAscii(bytes, 0) == bytes.size();
}

bool isValidUtf8(std::string_view bytes) {
  const auto byteAt = [bytes](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
  std::size_t at = endOfAscii(bytes, 0);
  while (at < bytes.size()) {
    const unsigned char lead = byteAt(at);
    if (lead < 0x80) {
      at = endOfAscii(bytes, at);
      continue;
    }
    const std::size_t length = lengthFrom(lead);
    if (length == 0 || bytes.size() - at < length || !isSecondByte(lead, byteAt(at + 1))) return false;
    if (length > 2 && !isFollowingByte(bytes[at + 2])) return false;
    if (length > 3 && !isFollowingByte(bytes[at + 3])) return false;
    at += length;
  }
  return true;
}

std::string_view utf8Prefix(std::string_view text, std::size_t maxBytes) {
  if (text.size() <= maxBytes) return text;
  // Where the bytes are no UTF-8 there may be no first byte at all.
  const std::size_t atLeast = maxBytes < 3 ? 0 : maxBytes - 3;
  while (maxBytes > atLeast && isFollowingByte(text[maxBytes]))
    --maxBytes;
  return text.substr(0, maxBytes);
}

}  // namespace tarn
