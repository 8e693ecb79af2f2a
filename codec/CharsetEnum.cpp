#include "codec/CharsetEnum.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarn {
namespace {

struct NamedCharset {
  CharsetEnum charset;
  std::string_view name;
};

constexpr auto namedCharsets = std::to_array<NamedCharset>({
    {CharsetEnum::utf8, "utf8"},
    {CharsetEnum::utf16, "utf16"},
    {CharsetEnum::utf32, "utf32"},
    {CharsetEnum::utf16BigEndian, "utf16BigEndian"},
    {CharsetEnum::utf32BigEndian, "utf32BigEndian"},
    {CharsetEnum::utf16LittleEndian, "utf16LittleEndian"},
    {CharsetEnum::utf32LittleEndian, "utf32LittleEndian"},
    {CharsetEnum::GB2312, "GB2312"},
    {CharsetEnum::GBK, "GBK"},
    {CharsetEnum::GB18030, "GB18030"},
    {CharsetEnum::EUC_CN, "EUC_CN"},
    {CharsetEnum::ISO_2022_CN, "ISO_2022_CN"},
    {CharsetEnum::big5, "big5"},
    {CharsetEnum::big5_E, "big5_E"},
    {CharsetEnum::big5_HKSCS_1999, "big5_HKSCS_1999"},
    {CharsetEnum::EUC_JP, "EUC_JP"},
    {CharsetEnum::ISO_2022_JP, "ISO_2022_JP"},
    {CharsetEnum::EUC_KR, "EUC_KR"},
    {CharsetEnum::ISO_2022_KR, "ISO_2022_KR"},
    {CharsetEnum::EUC_TW, "EUC_TW"},
    {CharsetEnum::iso_8859_1, "iso_8859_1"},
    {CharsetEnum::iso_8859_2, "iso_8859_2"},
    {CharsetEnum::iso_8859_3, "iso_8859_3"},
    {CharsetEnum::iso_8859_4, "iso_8859_4"},
    {CharsetEnum::iso_8859_5, "iso_8859_5"},
    {CharsetEnum::iso_8859_6, "iso_8859_6"},
    {CharsetEnum::iso_8859_7, "iso_8859_7"},
    {CharsetEnum::iso_8859_8, "iso_8859_8"},
    {CharsetEnum::iso_8859_9, "iso_8859_9"},
    {CharsetEnum::iso_8859_10, "iso_8859_10"},
    {CharsetEnum::iso_8859_11, "iso_8859_11"},
    {CharsetEnum::iso_8859_13, "iso_8859_13"},
    {CharsetEnum::iso_8859_14, "iso_8859_14"},
    {CharsetEnum::iso_8859_15, "iso_8859_15"},
    {CharsetEnum::iso_8859_16, "iso_8859_16"},
    {CharsetEnum::Arabic, "Arabic"},
    {CharsetEnum::Greek, "Greek"},
    {CharsetEnum::Hebrew, "Hebrew"},
    {CharsetEnum::Latin2, "Latin2"},
    {CharsetEnum::Latin5, "Latin5"},
    {CharsetEnum::Cyrillic, "Cyrillic"},
    {CharsetEnum::BalticRim, "BalticRim"},
    {CharsetEnum::Vietnamese, "Vietnamese"},
    {CharsetEnum::KoreanJohab, "KoreanJohab"},
    {CharsetEnum::KOI8_R, "KOI8_R"},
    {CharsetEnum::KOI8_U, "KOI8_U"},
});

constexpr auto charsets = [] {
  std::array<CharsetEnum, namedCharsets.size()> all{};
  std::transform(namedCharsets.begin(), namedCharsets.end(), all.begin(),
                 [](const NamedCharset& named) { return named.charset; });
  return all;
}();

}  // namespace

std::span<const CharsetEnum> allCharsets() {
  return charsets;
}

std::string charsetName(CharsetEnum charset) {
  return std::string(namedCharsets[static_cast<std::size_t>(charset)].name);
}

std::vector<std::string> charsetNames() {
  std::vector<std::string> names;
  names.reserve(namedCharsets.size());
  for (const NamedCharset& named : namedCharsets)
    names.emplace_back(named.name);
  return names;
}

}  // namespace tarn
