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

std::string withLettersReplaced(std::string text) {
  text = replaced(text, "\\r", "\r");
  text = replaced(text, "\\n", "\n");
  text = replaced(text, "\\t", "\t");
  text = replaced(text, "\\b", "\b");
  return replaced(text, "\\f", "\f");
}

std::string withControlsReplaced(std::string text) {
  text = replaced(text, "\\", "\\\\");
  text = replaced(text, "\r", "\\r");
  text = replaced(text, "\n", "\\n");
  text = replaced(text, "\t", "\\t");
  text = replaced(text, "\b", "\\b");
  return replaced(text, "\f", "\\f");
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

TEST(EscapeForms, DifferInWhatADoubleBackslashGuards) {
  EXPECT_EQ(unescapeControls("\\\\n"), "\\n");
  EXPECT_EQ(unescapeControlsForSearch("\\\\n"), "\\\\n");
  EXPECT_EQ(unescapeControlsInSequence("\\\\n"), "\\\n");
  EXPECT_EQ(unescapeControls("\\x\\"), "\\x\\");
  EXPECT_EQ(escapeControlsForCell("\\Bqw==\\"), "\\Bqw==\\\\");
}

}  // namespace
}  // namespace tarn
