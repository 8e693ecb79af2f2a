#pragma once

#include <string_view>

namespace tarn {

// All pure; any thread.

bool isAscii(std::string_view bytes);

// As Unicode defines it: shortest forms only, no surrogates, nothing above U+10FFFF, nothing cut off.
bool isValidUtf8(std::string_view bytes);

}  // namespace tarn
