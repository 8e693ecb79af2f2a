#pragma once

#include "codec/CharsetEnum.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// The three sets that switch between others by escape sequences: ISO_2022_CN, ISO_2022_JP, ISO_2022_KR. Strict; any
// thread. iconv's own converters mix up the sets of the Chinese one, and read escape sequences that nothing needs, so
// that two keys would show as one.

// Nothing also where an escape sequence or a shift changes nothing or is followed by nothing that needs it, and where
// the end isn't in ASCII.
std::optional<std::string> iso2022ToText(std::string_view bytes, CharsetEnum charset);
// `text` must be valid UTF-8. A character that several sets have goes into the one in use, else into the first.
std::optional<std::string> textToIso2022(std::string_view text, CharsetEnum charset);

}  // namespace tarn
