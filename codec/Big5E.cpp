#include "codec/Big5E.h"

#include "codec/Big5ETable.h"
#include "codec/Utf8Characters.h"
#include "platform/foundation/Immortal.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace tarn {
namespace {

// The pair of each character, lead byte first; 0 where there is none.
struct PairsByCharacter {
  std::array<std::uint16_t, 0x10000> pairs{};

  PairsByCharacter() {
    for (std::size_t i = 0; i < big5ETable.size(); ++i) {
      std::uint16_t& pair = pairs[big5ETable[i]];
      const std::size_t lead = big5EFirstLead + i / big5EColumns;
      const std::size_t trail = big5EFirstTrail + i % big5EColumns;
      if (pair == 0) pair = static_cast<std::uint16_t>(lead << 8 | trail);
    }
    pairs[0] = 0;
  }
};

}  // namespace

std::optional<std::string> big5EToText(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto lead = static_cast<unsigned char>(bytes[i]);
    if (lead < 0x80) {
      text += bytes[i];
      continue;
    }
    if (lead < big5EFirstLead || lead > big5ELastLead || ++i == bytes.size()) return std::nullopt;
    const auto trail = static_cast<unsigned char>(bytes[i]);
    if (trail < big5EFirstTrail || trail > big5ELastTrail) return std::nullopt;
    const auto row = static_cast<std::size_t>(lead - big5EFirstLead);
    const auto column = static_cast<std::size_t>(trail - big5EFirstTrail);
    const char16_t character = big5ETable[row * big5EColumns + column];
    if (character == 0) return std::nullopt;
    appendCharacter(text, character);
  }
  return text;
}

std::optional<std::string> textToBig5E(std::string_view text) {
  const auto& pairs = immortal<PairsByCharacter>().pairs;
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const char16_t character = takeCharacter(text, at);
    if (character < 0x80) {
      bytes += static_cast<char>(character);
      continue;
    }
    const std::uint16_t pair = pairs[character];
    if (pair == 0) return std::nullopt;
    bytes += static_cast<char>(pair >> 8);
    bytes += static_cast<char>(pair & 0xFF);
  }
  return bytes;
}

}  // namespace tarn
