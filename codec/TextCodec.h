#pragma once

#include "codec/CharsetEnum.h"
#include "platform/foundation/Bytes.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// Bytes to text and back. All pure; any thread. Text is UTF-8.

// Nothing when the bytes aren't valid in the character set.
std::optional<std::string> bytesToText(std::string_view bytes, CharsetEnum charset);
// Nothing when a character has no form in the character set: never lossy.
std::optional<Bytes> textToBytes(std::string_view text, CharsetEnum charset);

// True if the bytes are ASCII that the character set reads and writes as it is: a quick look, where only that matters.
bool isPlainAscii(std::string_view bytes, CharsetEnum charset);

// The set of what utf16 and utf32 write behind the byte order mark; any other set itself.
CharsetEnum charsetBehindMark(CharsetEnum charset);

// The two characters in front of Base64 text: how bytes that don't decode are shown and typed.
inline constexpr std::string_view base64Marker = "\\B";

}  // namespace tarn
