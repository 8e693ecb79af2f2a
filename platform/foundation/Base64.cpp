#include "platform/foundation/Base64.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace tarn {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint32_t notInAlphabet = 0x80000000U;

constexpr auto valueOfDigit = [] {
  std::array<std::uint32_t, 256> values{};
  values.fill(notInAlphabet);
  for (std::uint32_t i = 0; i < alphabet.size(); ++i)
    values[static_cast<unsigned char>(alphabet[i])] = i;
  return values;
}();

std::uint32_t digitValue(char c) {
  return valueOfDigit[static_cast<unsigned char>(c)];
}

std::uint32_t byteAt(std::string_view bytes, std::size_t index) {
  return index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U;
}

}  // namespace

std::string base64Encode(std::string_view bytes) {
  std::string text((bytes.size() + 2) / 3 * 4, '=');
  char* out = text.data();
  for (std::size_t i = 0; i < bytes.size(); i += 3, out += 4) {
    const std::uint32_t group = byteAt(bytes, i) << 16 | byteAt(bytes, i + 1) << 8 | byteAt(bytes, i + 2);
    out[0] = alphabet[group >> 18];
    out[1] = alphabet[group >> 12 & 63];
    if (i + 1 < bytes.size()) out[2] = alphabet[group >> 6 & 63];
    if (i + 2 < bytes.size()) out[3] = alphabet[group & 63];
  }
  return text;
}

std::optional<Bytes> base64Decode(std::string_view text) {
  Bytes bytes;
  if (text.empty()) return bytes;
  if (text.size() % 4 != 0) return std::nullopt;
  const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
  const std::size_t size = text.size() / 4 * 3 - padding;
  bytes.resize(size);
  char* const out = bytes.data();
  std::uint32_t seen = 0;
  for (std::size_t i = 0, at = 0; i < text.size(); i += 4, at += 3) {
    const bool isLast = i + 4 == text.size();
    const std::uint32_t third = isLast && padding == 2 ? 0 : digitValue(text[i + 2]);
    const std::uint32_t fourth = isLast && padding > 0 ? 0 : digitValue(text[i + 3]);
    const std::uint32_t group = digitValue(text[i]) << 18 | digitValue(text[i + 1]) << 12 | third << 6 | fourth;
    seen |= digitValue(text[i]) | digitValue(text[i + 1]) | third | fourth;
    out[at] = static_cast<char>(group >> 16);
    if (at + 1 < size) out[at + 1] = static_cast<char>(group >> 8);
    if (at + 2 < size) out[at + 2] = static_cast<char>(group);
  }
  if ((seen & notInAlphabet) != 0) return std::nullopt;
  return bytes;
}

}  // namespace tarn
