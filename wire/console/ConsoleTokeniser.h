#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// The words of a line typed in the console; nothing if a quote in it is left open. All pure; any thread.
//
// First the escape sequences `\\`, `\r`, `\n`, `\t`, `\b`, `\f` and `\"` become what they stand for, in the whole line;
// any other backslash stays. Then words end at blanks, and at no other white space, or are what stands between two
// quotes: an escaped quote is a quote like any other by then.
std::optional<std::vector<std::string>> consoleTokens(std::string_view line);

// What the log may show of a line, which may hold a password: its first word, as far as it looks like a command's name.
std::string_view consoleCommandWord(std::string_view line);

}  // namespace tarn
