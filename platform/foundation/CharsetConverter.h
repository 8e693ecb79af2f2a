#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// `charset` is iconv's name of a character set. Both are strict: nothing for bytes that are invalid or cut off, for a
// character that the set doesn't have, and for a set that the system doesn't have. Shift states are closed at the end;
// empty stands for empty. Any thread; each keeps the descriptors that it has used until it ends.
std::optional<std::string> convertToUtf8(std::string_view bytes, const char* charset);
std::optional<std::string> convertFromUtf8(std::string_view text, const char* charset);

}  // namespace tarn
