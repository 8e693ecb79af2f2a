#include "codec/TextCodec.h"

#include "codec/Big5E.h"
#include "platform/foundation/CharsetConverter.h"
#include "platform/foundation/Utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace tarn {
namespace {

// A character set of iconv, and where iconv departs from what the set means.
struct Conversion {
  SystemCharset system;
  // ASCII that switches between the parts of the set, and so stands for no character.
  std::string_view shiftCodes;
  // Characters that iconv writes although they read back as others.
  std::array<std::string_view, 2> misread;
  // Text in ASCII, the shift codes aside, is the same bytes.
  bool extendsAscii = true;
};

constexpr std::string_view yenSign = "\u00A5";
constexpr std::string_view overline = "\u203E";
constexpr std::string_view wonSign = "\u20A9";

constexpr Conversion extended(const char* name) {
  return {{name, {}}, {}, {}, true};
}

constexpr Conversion unicode(const char* name) {
  return {{name, {}}, {}, {}, false};
}

constexpr Conversion utf16Big = unicode("UTF-16BE");
constexpr Conversion utf16Little = unicode("UTF-16LE");
constexpr Conversion utf32Big = unicode("UTF-32BE");
constexpr Conversion utf32Little = unicode("UTF-32LE");

// In the order of CharsetEnum. Those without a name are not iconv's matter.
constexpr auto conversions = std::to_array<Conversion>({
    {},  // utf8
    {},  // utf16
    {},  // utf32
    utf16Big,
    utf32Big,
    utf16Little,
    utf32Little,
    extended("GB2312"),
    extended("GBK"),
    extended("GB18030"),
    extended("EUC-CN"),
    // DEL is refused on reading.
    {{"ISO-2022-CN", "\x7F"}, "\x0E\x0F\x1B", {}},
    extended("BIG5"),
    {},  // big5_E
    extended("BIG5-HKSCS"),
    {{"EUC-JP", {}}, {}, {yenSign, overline}},
    {{"ISO-2022-JP", {}}, "\x1B", {}},
    {{"EUC-KR", {}}, {}, {wonSign}},
    {{"ISO-2022-KR", {}}, "\x0E\x0F\x1B", {}},
    extended("EUC-TW"),
    extended("ISO-8859-1"),
    extended("ISO-8859-2"),
    extended("ISO-8859-3"),
    extended("ISO-8859-4"),
    extended("ISO-8859-5"),
    extended("ISO-8859-6"),
    extended("ISO-8859-7"),
    extended("ISO-8859-8"),
    extended("ISO-8859-9"),
    extended("ISO-8859-10"),
    extended("ISO-8859-11"),
    extended("ISO-8859-13"),
    extended("ISO-8859-14"),
    extended("ISO-8859-15"),
    extended("ISO-8859-16"),
    extended("CP1256"),
    extended("CP1253"),
    extended("CP1255"),
    extended("CP1250"),
    extended("CP1254"),
    extended("CP1251"),
    extended("CP1257"),
    extended("CP1258"),
    // 0x5C is the backslash, which iconv refuses on writing, and reads as the won sign.
    {{"JOHAB", "\\"}, {}, {wonSign}},
    extended("KOI8-R"),
    extended("KOI8-U"),
});
static_assert(conversions.size() == static_cast<std::size_t>(CharsetEnum::KOI8_U) + 1);

const Conversion& conversionOf(CharsetEnum charset) {
  return conversions[static_cast<std::size_t>(charset)];
}

// The two forms of a Unicode charset with a byte order mark.
struct MarkedCharset {
  std::string_view bigMark;
  const Conversion& big;
  std::string_view littleMark;
  const Conversion& little;
};

constexpr MarkedCharset markedUtf16 = {{"\xFE\xFF", 2}, utf16Big, {"\xFF\xFE", 2}, utf16Little};
constexpr MarkedCharset markedUtf32 = {{"\0\0\xFE\xFF", 4}, utf32Big, {"\xFF\xFE\0\0", 4}, utf32Little};

bool containsAnyOf(std::string_view bytes, std::string_view codes) {
  return !codes.empty() && bytes.find_first_of(codes) != std::string_view::npos;
}

bool isPlain(std::string_view bytes, const Conversion& conversion) {
  return conversion.extendsAscii && isAscii(bytes) && !containsAnyOf(bytes, conversion.shiftCodes);
}

std::optional<std::string> decode(std::string_view bytes, CharsetEnum charset) {
  const Conversion& conversion = conversionOf(charset);
  if (isPlain(bytes, conversion)) return std::string(bytes);
  auto text = convertToUtf8(bytes, conversion.system);
  if (!text || charset != CharsetEnum::KoreanJohab) return text;
  for (std::size_t at = text->find(wonSign); at != std::string::npos; at = text->find(wonSign, at + 1)) {
    text->replace(at, wonSign.size(), "\\");
  }
  return text;
}

// Without a mark the bytes are big-endian.
std::optional<std::string> decodeMarked(std::string_view bytes, const MarkedCharset& charset) {
  const bool isLittle = bytes.starts_with(charset.littleMark);
  if (isLittle || bytes.starts_with(charset.bigMark)) bytes.remove_prefix(charset.bigMark.size());
  return convertToUtf8(bytes, (isLittle ? charset.little : charset.big).system);
}

// The tag characters, U+E0000 to U+E007F: where a charset hasn't got them, iconv drops them without a word.
bool containsTags(std::string_view text) {
  static constexpr std::string_view beginning = "\xF3\xA0";
  for (std::size_t at = text.find(beginning); at != std::string_view::npos; at = text.find(beginning, at + 1)) {
    const char third = text[at + beginning.size()];
    if (third == '\x80' || third == '\x81') return true;
  }
  return false;
}

bool isWritable(std::string_view text, CharsetEnum charset) {
  const Conversion& conversion = conversionOf(charset);
  if (!conversion.extendsAscii) return true;
  if (containsAnyOf(text, conversion.shiftCodes)) return false;
  if (charset != CharsetEnum::GB18030 && containsTags(text)) return false;
  return std::none_of(conversion.misread.begin(), conversion.misread.end(), [text](std::string_view character) {
    return !character.empty() && text.find(character) != std::string_view::npos;
  });
}

std::optional<Bytes> asBytes(const std::optional<std::string>& chars) {
  if (!chars) return std::nullopt;
  return Bytes(*chars);
}

std::optional<Bytes> encode(std::string_view text, CharsetEnum charset) {
  const Conversion& conversion = conversionOf(charset);
  if (isPlain(text, conversion)) return Bytes(text);
  if (!isWritable(text, charset)) return std::nullopt;
  return asBytes(convertFromUtf8(text, conversion.system));
}

// In the order of the platform that most machines have, little-endian, with the mark that says so.
std::optional<Bytes> encodeMarked(std::string_view text, const MarkedCharset& charset) {
  const auto body = convertFromUtf8(text, charset.little.system);
  if (!body || body->empty()) return asBytes(body);
  Bytes bytes(charset.littleMark);
  bytes.append(*body);
  return bytes;
}

}  // namespace

std::optional<std::string> bytesToText(std::string_view bytes, CharsetEnum charset) {
  switch (charset) {
    case CharsetEnum::utf8:
      if (!isValidUtf8(bytes)) return std::nullopt;
      return std::string(bytes);
    case CharsetEnum::utf16:
      return decodeMarked(bytes, markedUtf16);
    case CharsetEnum::utf32:
      return decodeMarked(bytes, markedUtf32);
    case CharsetEnum::big5_E:
      return big5EToText(bytes);
    default:
      return decode(bytes, charset);
  }
}

std::optional<Bytes> textToBytes(std::string_view text, CharsetEnum charset) {
  if (!isValidUtf8(text)) return std::nullopt;
  switch (charset) {
    case CharsetEnum::utf8:
      return Bytes(text);
    case CharsetEnum::utf16:
      return encodeMarked(text, markedUtf16);
    case CharsetEnum::utf32:
      return encodeMarked(text, markedUtf32);
    case CharsetEnum::big5_E:
      return asBytes(textToBig5E(text));
    default:
      return encode(text, charset);
  }
}

bool isPlainAscii(std::string_view bytes, CharsetEnum charset) {
  if (charset == CharsetEnum::utf16 || charset == CharsetEnum::utf32) return bytes.empty();
  return isPlain(bytes, conversionOf(charset));
}

}  // namespace tarn
