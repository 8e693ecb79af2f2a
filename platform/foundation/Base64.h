#pragma once

#include "platform/foundation/Bytes.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// Standard Base64 (RFC 4648, `+` and `/`, padded), no line breaks. Any thread.
std::string base64Encode(std::string_view bytes);

// Strict: nothing if any character is outside the alphabet (blanks and line breaks too) or the padding is wrong.
std::optional<Bytes> base64Decode(std::string_view text);

}  // namespace tarn
