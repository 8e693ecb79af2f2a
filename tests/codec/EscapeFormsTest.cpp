#include "codec/EscapeForms.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace tarn {
namespace {

// The forms as they are defined: whole-text replacements one after the other.
std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

constexpr const char* controlsAndLetters[][2] = {
    {"\r", "\\r"}, {"\n", "\\n"}, {"\t", "\\t"}, {"\b", "\\b"}, {"\f", "\\f"}};

std::string withLettersReplaced(std::string text) {
  for (const auto& [control, letter] : controlsAndLetters)
    text = replaced(text, letter, control);
  return text;
}

std::string withControlsReplaced(std::string text) {
  text = replaced(text, "\\", "\\\\");
  for (const auto& [control, letter] : controlsAndLetters)
    text = replaced(text, control, letter);
  return text;
}

constexpr const char* placeholder = "#1234567890#";

TEST(EscapeForms, AreWhatTheReplacementsGive) {
  std::mt19937 random(7);
  static constexpr std::string_view characters = "\\\\\\\\rntbfB\r\n\t\b\f\vx";
  for (int round = 0; round < 5000; ++round) {
    std::string text(random() % 12, ' ');
    for (char& c : text)
      c = characters[random() % characters.size()];
    const std::string guarded = withLettersReplaced(replaced(text, "\\\\", placeholder));
    ASSERT_EQ(escapeControls(text), withControlsReplaced(text)) << text;
    ASSERT_EQ(unescapeControls(text), replaced(guarded, placeholder, "\\")) << text;
    ASSERT_EQ(unescapeControlsForSearch(text), replaced(guarded, placeholder, "\\\\")) << text;
    ASSERT_EQ(unescapeControlsInSequence(text), replaced(withLettersReplaced(text), "\\\\", "\\")) << text;
    ASSERT_EQ(escapeControlsForCell(text),
              replaced(withControlsReplaced(replaced(text, "\\B", placeholder)), placeholder, "\\B"))
        << text;
    ASSERT_EQ(unescapeControls(escapeControls(text)), text);
  }
}

}  // namespace
}  // namespace tarn
