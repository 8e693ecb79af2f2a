#include "formatters/CouldNegativeNumberFormatter.h"

#include "formatters/WholeNumber.h"
#include "platform/foundation/Log.h"

namespace tarn {
namespace {

bool isPartOfWholeNumber(std::string_view text) {
  if (!text.starts_with('-')) return isWholeNumber(text);
  text.remove_prefix(1);
  return text.empty() || (text != "0" && isWholeNumber(text));
}

}  // namespace

bool CouldNegativeNumberFormatter::isPartialStringValid(std::string_view partial) const {
  if (partial.empty()) return true;
  const bool isValid = isPartOfWholeNumber(partial);
  logLine(isValid ? "true" : "false");
  return isValid;
}

}  // namespace tarn
