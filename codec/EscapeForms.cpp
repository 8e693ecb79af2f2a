#include "codec/EscapeForms.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarn {
namespace {

struct EscapeSequence {
  char control;
  char letter;
};

constexpr auto sequences =
    std::to_array<EscapeSequence>({{'\r', 'r'}, {'\n', 'n'}, {'\t', 't'}, {'\b', 'b'}, {'\f', 'f'}});

constexpr std::size_t indexOf(char c) {
  return static_cast<unsigned char>(c);
}

// By the character; 0 for those of no sequence.
using CharacterTable = std::array<char, 256>;

constexpr CharacterTable lettersOfControls = [] {
  CharacterTable letters{};
  for (const auto& [control, letter] : sequences)
    letters[indexOf(control)] = letter;
  return letters;
}();

constexpr CharacterTable controlsOfLetters = [] {
  CharacterTable controls{};
  for (const auto& [control, letter] : sequences)
    controls[indexOf(letter)] = control;
  return controls;
}();

bool isEscapable(char c) {
  return c == '\\' || lettersOfControls[indexOf(c)] != 0;
}

std::string escape(std::string_view text, bool keepsMarker) {
  const auto first = std::find_if(text.begin(), text.end(), isEscapable);
  const auto plain = static_cast<std::size_t>(first - text.begin());
  std::string escaped(text.substr(0, plain));
  if (plain == text.size()) return escaped;
  escaped.reserve(text.size() + text.size() / 8 + 1);
  for (std::size_t i = plain; i < text.size(); ++i) {
    if (!isEscapable(text[i])) {
      escaped += text[i];
    } else if (text[i] != '\\') {
      escaped += '\\';
      escaped += lettersOfControls[indexOf(text[i])];
    } else {
      const bool isMarker = keepsMarker && i + 1 < text.size() && text[i + 1] == 'B';
      escaped += isMarker ? "\\" : "\\\\";
    }
  }
  return escaped;
}

std::string unescape(std::string_view text, std::string_view doubleBackslash) {
  const std::size_t plain = std::min(text.find('\\'), text.size());
  std::string clear(text.substr(0, plain));
  for (std::size_t i = plain; i < text.size(); ++i) {
    const char next = text[i] == '\\' && i + 1 < text.size() ? text[i + 1] : '\0';
    const char control = controlOfLetter(next);
    if (next == '\\') {
      clear += doubleBackslash;
      ++i;
    } else if (control != 0) {
      clear += control;
      ++i;
    } else {
      clear += text[i];
    }
  }
  return clear;
}

}  // namespace

char controlOfLetter(char letter) {
  return controlsOfLetters[indexOf(letter)];
}

std::string escapeControls(std::string_view text) {
  return escape(text, false);
}

std::string unescapeControls(std::string_view text) {
  return unescape(text, "\\");
}

std::string unescapeControlsForSearch(std::string_view text) {
  return unescape(text, "\\\\");
}

std::string unescapeControlsInSequence(std::string_view text) {
  std::string clear;
  clear.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] != '\\') {
      clear += text[i++];
      continue;
    }
    // Of a run of backslashes the last belongs to the letter behind it, whatever stands before; the rest are pairs.
    const std::size_t end = std::min(text.find_first_not_of('\\', i), text.size());
    const char control = end < text.size() ? controlOfLetter(text[end]) : '\0';
    const std::size_t backslashes = end - i - (control != 0 ? 1 : 0);
    clear.append((backslashes + 1) / 2, '\\');
    i = end;
    if (control != 0) {
      clear += control;
      ++i;
    }
  }
  return clear;
}

std::string escapeControlsForCell(std::string_view text) {
  return escape(text, true);
}

}  // namespace tarn
