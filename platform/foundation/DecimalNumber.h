#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarn {

// A whole text as a base-10 number, with or without a sign; nothing if it is empty, holds anything else, or doesn't
// fit.
std::optional<std::int64_t> decimalInteger(std::string_view text);
std::optional<double> decimalDouble(std::string_view text);

}  // namespace tarn
