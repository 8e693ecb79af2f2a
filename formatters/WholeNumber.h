#pragma once

#include <string_view>

namespace tarn {

// The digits that the text begins with.
std::string_view leadingDigits(std::string_view text);

// "0", or digits that don't begin with a zero.
bool isWholeNumber(std::string_view text);

}  // namespace tarn
