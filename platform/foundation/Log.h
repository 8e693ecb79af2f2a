#pragma once

#include <string_view>

namespace tarn {

// Writes one line of free text to standard output, whole, also when threads log at once.
void logLine(std::string_view text);

// Called once at start: whoever reads the log may end before the program, which then goes on without one.
void outliveLogReader();

}  // namespace tarn
