#pragma once

#include <string>
#include <string_view>

namespace tarn {

// The six escape sequences: `\\` backslash, `\r` CR, `\n` LF, `\t` TAB, `\b` BS, `\f` FF. Any other backslash stays.
// All pure; any thread.

// The control character that a letter stands for behind a backslash; 0 if it stands for none.
char controlOfLetter(char letter);

std::string escapeControls(std::string_view text);

// A double backslash guards what follows it: `\\n` is a backslash and an n.
std::string unescapeControls(std::string_view text);

// As unescapeControls, but a double backslash stays double: how a search text is read.
std::string unescapeControlsForSearch(std::string_view text);

// Six plain replacements one after the other, without the guard: `\\n` is a backslash and a line feed.
std::string unescapeControlsInSequence(std::string_view text);

// escapeControls, but each `\B` stays as it is: how a cell shows a row.
std::string escapeControlsForCell(std::string_view text);

}  // namespace tarn
