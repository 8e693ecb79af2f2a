#pragma once

#include "codec/CharsetEnum.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace tarn {

// A character set of iconv, and where iconv departs from what the set means.
struct Conversion {
  // Its name there; none where the set isn't iconv's matter.
  const char* system = nullptr;
  // ASCII that switches between the parts of the set, and so stands for no character.
  std::string_view shiftCodes;
  // Characters that iconv writes although they read back as others.
  std::array<std::string_view, 2> misread;
  // Text in ASCII, the shift codes aside, is the same bytes.
  bool extendsAscii = true;
  // iconv writes some characters as a letter and its mark, which may read back as another one.
  bool composes = false;
};

struct CharsetRow {
  std::string_view name;
  Conversion conversion;
};

inline constexpr std::string_view yenSign = "\u00A5";
inline constexpr std::string_view overline = "\u203E";
inline constexpr std::string_view wonSign = "\u20A9";

constexpr Conversion extended(const char* name) {
  return {name, {}, {}, true};
}

constexpr Conversion composing(const char* name) {
  return {name, {}, {}, true, true};
}

// Switched to and from by escape sequences.
constexpr Conversion shifting(std::string_view shiftCodes) {
  return {nullptr, shiftCodes, {}, true};
}

constexpr Conversion unicode(const char* name) {
  return {name, {}, {}, false};
}

// In the order of CharsetEnum, whose names these are.
inline constexpr auto charsetTable = std::to_array<CharsetRow>({
    {"utf8", {}},
    {"utf16", {}},
    {"utf32", {}},
    {"utf16BigEndian", unicode("UTF-16BE")},
    {"utf32BigEndian", unicode("UTF-32BE")},
    {"utf16LittleEndian", unicode("UTF-16LE")},
    {"utf32LittleEndian", unicode("UTF-32LE")},
    {"GB2312", extended("GB2312")},
    {"GBK", extended("GBK")},
    {"GB18030", extended("GB18030")},
    {"EUC_CN", extended("EUC-CN")},
    {"ISO_2022_CN", shifting("\x0E\x0F\x1B")},
    {"big5", extended("BIG5")},
    {"big5_E", {}},
    {"big5_HKSCS_1999", extended("BIG5-HKSCS")},
    {"EUC_JP", {"EUC-JP", {}, {yenSign, overline}}},
    {"ISO_2022_JP", shifting("\x1B")},
    {"EUC_KR", {"EUC-KR", {}, {wonSign}}},
    {"ISO_2022_KR", shifting("\x0E\x0F\x1B")},
    {"EUC_TW", extended("EUC-TW")},
    {"iso_8859_1", extended("ISO-8859-1")},
    {"iso_8859_2", extended("ISO-8859-2")},
    {"iso_8859_3", extended("ISO-8859-3")},
    {"iso_8859_4", extended("ISO-8859-4")},
    {"iso_8859_5", extended("ISO-8859-5")},
    {"iso_8859_6", extended("ISO-8859-6")},
    {"iso_8859_7", extended("ISO-8859-7")},
    {"iso_8859_8", extended("ISO-8859-8")},
    {"iso_8859_9", extended("ISO-8859-9")},
    {"iso_8859_10", extended("ISO-8859-10")},
    {"iso_8859_11", extended("ISO-8859-11")},
    {"iso_8859_13", extended("ISO-8859-13")},
    {"iso_8859_14", extended("ISO-8859-14")},
    {"iso_8859_15", extended("ISO-8859-15")},
    {"iso_8859_16", extended("ISO-8859-16")},
    {"Arabic", extended("CP1256")},
    {"Greek", extended("CP1253")},
    {"Hebrew", composing("CP1255")},
    {"Latin2", extended("CP1250")},
    {"Latin5", extended("CP1254")},
    {"Cyrillic", extended("CP1251")},
    {"BalticRim", extended("CP1257")},
    {"Vietnamese", composing("CP1258")},
    // 0x5C is the backslash, where iconv has the won sign.
    {"KoreanJohab", {"JOHAB", {}, {wonSign}}},
    {"KOI8_R", extended("KOI8-R")},
    {"KOI8_U", extended("KOI8-U")},
});
static_assert(charsetTable.size() == static_cast<std::size_t>(CharsetEnum::KOI8_U) + 1);

constexpr const CharsetRow& rowOf(CharsetEnum charset) {
  return charsetTable[static_cast<std::size_t>(charset)];
}

}  // namespace tarn
