#include "formatters/RequiredCouldNegativeDoubleFormatter.h"

#include "formatters/WholeNumber.h"
#include "platform/foundation/Log.h"

#include <cstddef>

namespace tarn {
namespace {

constexpr std::size_t maxCharacters = 16;
// A negative number without a fraction has this limit of its own; beyond it the text counts as no number.
constexpr std::size_t maxNegativeDigits = 17;

bool isPartOfDecimal(std::string_view text) {
  const bool isNegative = text.starts_with('-');
  if (isNegative) text.remove_prefix(1);
  if (isNegative && text.empty()) return true;
  const std::string_view whole = leadingDigits(text);
  if (!isWholeNumber(whole)) return false;
  text.remove_prefix(whole.size());
  if (text.empty()) return !isNegative || (whole != "0" && whole.size() <= maxNegativeDigits);
  if (!text.starts_with('.')) return false;
  text.remove_prefix(1);
  return leadingDigits(text) == text;
}

}  // namespace

bool RequiredCouldNegativeDoubleFormatter::isPartialStringValid(std::string_view partial) const {
  if (partial.empty()) return true;
  if (!isPartOfDecimal(partial)) {
    logLine("false");
    return false;
  }
  // What is a number is plain ASCII: bytes are characters.
  return partial.size() <= maxCharacters;
}

}  // namespace tarn
