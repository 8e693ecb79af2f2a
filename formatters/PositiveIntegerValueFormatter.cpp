#include "formatters/PositiveIntegerValueFormatter.h"

#include "formatters/WholeNumber.h"

#include <charconv>
#include <cstdint>
#include <system_error>

namespace tarn {

bool PositiveIntegerValueFormatter::isPartialStringValid(std::string_view partial) const {
  if (partial.empty()) return true;
  if (!isWholeNumber(partial)) return false;
  // More digits than the type holds are too large as well.
  std::uint16_t value = 0;
  return std::from_chars(partial.data(), partial.data() + partial.size(), value).ec == std::errc();
}

}  // namespace tarn
