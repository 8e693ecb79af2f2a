#include "wire/console/ConsoleTokeniser.h"

#include "codec/EscapeForms.h"

#include <algorithm>
#include <cstddef>

namespace tarn {

namespace {

constexpr char blank = ' ';
constexpr char quote = '"';

// Nothing for a character that makes no escape sequence with the backslash before it.
std::optional<char> escaped(char character) {
  if (character == '\\' || character == quote) return character;
  const char control = controlOfLetter(character);
  return control == 0 ? std::nullopt : std::optional(control);
}

std::string unescaped(std::string_view line) {
  std::string result;
  result.reserve(line.size());
  for (std::size_t i = 0; i < line.size(); ++i) {
    const auto meant = line[i] == '\\' && i + 1 < line.size() ? escaped(line[i + 1]) : std::nullopt;
    result += meant.value_or(line[i]);
    if (meant) ++i;
  }
  return result;
}

bool isInName(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || character == '.' || character == '_' || character == '-';
}

}  // namespace

std::optional<std::vector<std::string>> consoleTokens(std::string_view line) {
  const std::string text = unescaped(line);
  std::vector<std::string> tokens;
  std::size_t next = 0;
  while ((next = text.find_first_not_of(blank, next)) != std::string::npos) {
    const bool isQuoted = text[next] == quote;
    if (isQuoted) ++next;
    const std::size_t end = text.find(isQuoted ? quote : blank, next);
    if (isQuoted && end == std::string::npos) return std::nullopt;
    tokens.push_back(text.substr(next, end - next));
    if (end == std::string::npos) break;
    next = end + 1;
  }
  return tokens;
}

std::string_view consoleCommandWord(std::string_view line) {
  line.remove_prefix(std::min(line.size(), line.find_first_not_of(blank)));
  if (line.starts_with(quote)) line.remove_prefix(1);
  const auto end = std::find_if_not(line.begin(), line.end(), isInName);
  return line.substr(0, static_cast<std::size_t>(end - line.begin()));
}

}  // namespace tarn
