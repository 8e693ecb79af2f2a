#include "codec/TextCodec.h"

#include "codec/Big5E.h"
#include "codec/CharsetTable.h"
#include "codec/Iso2022.h"
#include "codec/Utf8Characters.h"
#include "platform/foundation/CharsetConverter.h"
#include "platform/foundation/Immortal.h"
#include "platform/foundation/Utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace tarn {
namespace {

const Conversion& conversionOf(CharsetEnum charset) {
  return rowOf(charset).conversion;
}

// The two forms of a Unicode charset with a byte order mark.
struct MarkedCharset {
  std::string_view bigMark;
  CharsetEnum big;
  std::string_view littleMark;
  CharsetEnum little;
};

constexpr MarkedCharset markedUtf16 = {
    {"\xFE\xFF", 2}, CharsetEnum::utf16BigEndian, {"\xFF\xFE", 2}, CharsetEnum::utf16LittleEndian};
constexpr MarkedCharset markedUtf32 = {
    {"\0\0\xFE\xFF", 4}, CharsetEnum::utf32BigEndian, {"\xFF\xFE\0\0", 4}, CharsetEnum::utf32LittleEndian};

bool isIso2022(CharsetEnum charset) {
  return !conversionOf(charset).shiftCodes.empty();
}

bool containsAnyOf(std::string_view bytes, std::string_view codes) {
  return !codes.empty() && bytes.find_first_of(codes) != std::string_view::npos;
}

bool isPlain(std::string_view bytes, const Conversion& conversion) {
  return conversion.extendsAscii && isAscii(bytes) && !containsAnyOf(bytes, conversion.shiftCodes);
}

std::string withEachReplaced(std::string_view text, std::string_view from, std::string_view to) {
  std::string replaced;
  replaced.reserve(text.size());
  std::size_t at = 0;
  for (std::size_t next = text.find(from); next != std::string_view::npos; next = text.find(from, at)) {
    replaced.append(text, at, next - at).append(to);
    at = next + from.size();
  }
  return replaced.append(text, at);
}

// iconv reads a letter and its mark as one presentation form; here each byte is a character, as it is typed.
class HebrewCharacters final {
public:
  HebrewCharacters() {
    for (std::size_t byte = 0; byte < characters_.size(); ++byte) {
      const char single = static_cast<char>(byte);
      const auto text = convertToUtf8({&single, 1}, conversionOf(CharsetEnum::Hebrew).system);
      std::size_t at = 0;
      characters_[byte] = text ? takeCharacter(*text, at) : noCharacter;
    }
  }

  std::optional<std::string> text(std::string_view bytes) const {
    std::string text;
    text.reserve(2 * bytes.size());
    for (const char byte : bytes) {
      const char16_t character = characters_[static_cast<unsigned char>(byte)];
      if (character == noCharacter) return std::nullopt;
      appendCharacter(text, character);
    }
    return text;
  }

private:
  std::array<char16_t, 256> characters_{};
};

std::optional<std::string> decode(std::string_view bytes, CharsetEnum charset) {
  const Conversion& conversion = conversionOf(charset);
  if (isPlain(bytes, conversion)) return std::string(bytes);
  if (isIso2022(charset)) return iso2022ToText(bytes, charset);
  if (charset == CharsetEnum::Hebrew) return immortal<HebrewCharacters>().text(bytes);
  auto text = convertToUtf8(bytes, conversion.system);
  if (text && charset == CharsetEnum::KoreanJohab) return withEachReplaced(*text, wonSign, "\\");
  return text;
}

// Without a mark the bytes are big-endian.
std::optional<std::string> decodeMarked(std::string_view bytes, const MarkedCharset& charset) {
  const bool isLittle = bytes.starts_with(charset.littleMark);
  if (isLittle || bytes.starts_with(charset.bigMark)) bytes.remove_prefix(charset.bigMark.size());
  return convertToUtf8(bytes, conversionOf(isLittle ? charset.little : charset.big).system);
}

// The tag characters, U+E0000 to U+E007F: where a charset hasn't got them, iconv drops them silently.
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

std::optional<std::string> written(std::string_view text, CharsetEnum charset) {
  const Conversion& conversion = conversionOf(charset);
  if (isIso2022(charset)) return textToIso2022(text, charset);
  if (charset != CharsetEnum::KoreanJohab) return convertFromUtf8(text, conversion.system);
  return convertFromUtf8(withEachReplaced(text, "\\", wonSign), conversion.system);
}

std::optional<Bytes> encode(std::string_view text, CharsetEnum charset) {
  const Conversion& conversion = conversionOf(charset);
  if (isPlain(text, conversion)) return Bytes(text);
  if (!isWritable(text, charset)) return std::nullopt;
  const auto bytes = written(text, charset);
  if (bytes && conversion.composes && decode(*bytes, charset) != text) return std::nullopt;
  return asBytes(bytes);
}

// In the order of the platform that most machines have, little-endian, with the mark that says so.
std::optional<Bytes> encodeMarked(std::string_view text, const MarkedCharset& charset) {
  const auto body = convertFromUtf8(text, conversionOf(charset.little).system);
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

CharsetEnum charsetBehindMark(CharsetEnum charset) {
  if (charset == CharsetEnum::utf16) return markedUtf16.little;
  return charset == CharsetEnum::utf32 ? markedUtf32.little : charset;
}

}  // namespace tarn
