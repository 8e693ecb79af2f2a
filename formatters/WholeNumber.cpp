#include "formatters/WholeNumber.h"

#include <algorithm>

namespace tarn {

std::string_view leadingDigits(std::string_view text) {
  return text.substr(0, std::min(text.find_first_not_of("0123456789"), text.size()));
}

bool isWholeNumber(std::string_view text) {
  if (text.empty() || leadingDigits(text) != text) return false;
  return text == "0" || !text.starts_with('0');
}

}  // namespace tarn
