#include "platform/foundation/NSUUID.h"

#include <cstddef>
#include <cstring>
#include <random>

namespace tarn {
namespace {

constexpr std::size_t textSize = 36;

bool isHyphenPosition(std::size_t index) {
  return index == 8 || index == 13 || index == 18 || index == 23;
}

std::optional<std::uint8_t> hexDigitValue(char c) {
  if (c >= '0' && c <= '9') return static_cast<std::uint8_t>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<std::uint8_t>(c - 'a' + 10);
  if (c >= 'A' && c <= 'F') return static_cast<std::uint8_t>(c - 'A' + 10);
  return std::nullopt;
}

}  // namespace

NSUUID::NSUUID() {
  std::random_device source;
  for (std::size_t i = 0; i < bytes_.size(); i += sizeof(std::uint32_t)) {
    const std::uint32_t word = source();
    std::memcpy(&bytes_[i], &word, sizeof word);
  }
  // The marks of a random UUID: version 4, the variant of RFC 4122.
  bytes_[6] = static_cast<std::uint8_t>((bytes_[6] & 0x0F) | 0x40);
  bytes_[8] = static_cast<std::uint8_t>((bytes_[8] & 0x3F) | 0x80);
}

std::optional<NSUUID> NSUUID::fromString(std::string_view text) {
  if (text.size() != textSize) return std::nullopt;
  std::array<std::uint8_t, 16> bytes{};
  std::size_t digits = 0;
  for (std::size_t i = 0; i < textSize; ++i) {
    if (isHyphenPosition(i)) {
      if (text[i] != '-') return std::nullopt;
      continue;
    }
    const auto value = hexDigitValue(text[i]);
    if (!value) return std::nullopt;
    std::uint8_t& byte = bytes[digits++ / 2];
    byte = static_cast<std::uint8_t>(byte << 4 | *value);
  }
  return NSUUID(bytes);
}

std::string NSUUID::uuidString() const {
  static constexpr std::string_view hexDigits = "0123456789ABCDEF";
  std::string text;
  text.reserve(textSize);
  for (const std::uint8_t byte : bytes_) {
    if (isHyphenPosition(text.size())) text += '-';
    text += hexDigits[byte >> 4];
    text += hexDigits[byte & 0x0F];
  }
  return text;
}

}  // namespace tarn
