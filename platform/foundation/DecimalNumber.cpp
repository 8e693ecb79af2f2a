#include "platform/foundation/DecimalNumber.h"

#include <charconv>

namespace tarn {

namespace {

template <typename Number>
std::optional<Number> numberFromText(std::string_view text) {
  if (text.starts_with('+') && !text.substr(1).starts_with('-')) text.remove_prefix(1);
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

}  // namespace

std::optional<std::int64_t> decimalInteger(std::string_view text) {
  return numberFromText<std::int64_t>(text);
}

std::optional<double> decimalDouble(std::string_view text) {
  return numberFromText<double>(text);
}

}  // namespace tarn
