#pragma once

#include <array>
#include <cstddef>

namespace tarn {

// A pair of bytes of Big5-E lies in these bounds.
inline constexpr unsigned char big5EFirstLead = 0x81;
inline constexpr unsigned char big5ELastLead = 0xF9;
inline constexpr unsigned char big5EFirstTrail = 0x40;
inline constexpr unsigned char big5ELastTrail = 0xFE;
inline constexpr std::size_t big5ERows = big5ELastLead - big5EFirstLead + 1;
inline constexpr std::size_t big5EColumns = big5ELastTrail - big5EFirstTrail + 1;

// The character of each pair, row after row; 0 where there is none. Eight characters of box drawing have two pairs.
extern const std::array<char16_t, big5ERows * big5EColumns> big5ETable;

}  // namespace tarn
