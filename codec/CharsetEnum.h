#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// The selectable character sets, in the order of every pop-up. A case's name is what is shown and stored.
// clang-format off
enum class CharsetEnum {
  utf8, utf16, utf32, utf16BigEndian, utf32BigEndian, utf16LittleEndian, utf32LittleEndian,
  GB2312, GBK, GB18030, EUC_CN, ISO_2022_CN, big5, big5_E, big5_HKSCS_1999,
  EUC_JP, ISO_2022_JP, EUC_KR, ISO_2022_KR, EUC_TW,
  iso_8859_1, iso_8859_2, iso_8859_3, iso_8859_4, iso_8859_5, iso_8859_6, iso_8859_7, iso_8859_8, iso_8859_9,
  iso_8859_10, iso_8859_11, iso_8859_13, iso_8859_14, iso_8859_15, iso_8859_16,
  Arabic, Greek, Hebrew, Latin2, Latin5, Cyrillic, BalticRim, Vietnamese, KoreanJohab, KOI8_R, KOI8_U,
};
// clang-format on

// All pure; any thread.
std::string charsetName(CharsetEnum charset);
std::vector<std::string> charsetNames();

}  // namespace tarn
