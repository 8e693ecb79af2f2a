#pragma once

#include <string_view>

namespace tarn {

// Writes one line of free text to standard output, whole, also when threads log at once.
void logLine(std::string_view text);

}  // namespace tarn
