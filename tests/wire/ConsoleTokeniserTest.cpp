#include "wire/console/ConsoleTokeniser.h"

#include <gtest/gtest.h>

namespace tarn::test {
namespace {

using Tokens = std::vector<std::string>;

TEST(ConsoleTokeniser, SeparatesAtBlanksOnlyAndKeepsWhatIsQuotedTogether) {
  EXPECT_EQ(consoleTokens(R"(  set "a b"  c )"), (Tokens{"set", "a b", "c"}));
  EXPECT_EQ(consoleTokens("set\ta\nb"), Tokens{"set\ta\nb"});
  EXPECT_EQ(consoleTokens(R"("a"b "" c"d"e)"), (Tokens{"a", "b", "", "c\"d\"e"}));
  EXPECT_EQ(consoleTokens(""), Tokens{});
  EXPECT_EQ(consoleTokens("   "), Tokens{});
  EXPECT_EQ(consoleTokens("set 键 \xF0\x9F\x98\x80"), (Tokens{"set", "键", "\xF0\x9F\x98\x80"}));
}

TEST(ConsoleTokeniser, RefusesALineWithAnOpenQuote) {
  EXPECT_EQ(consoleTokens(R"(set k "unterminated)"), std::nullopt);
  EXPECT_EQ(consoleTokens("\""), std::nullopt);
  EXPECT_EQ(consoleTokens(R"(set "a"")"), std::nullopt);
}

TEST(ConsoleTokeniser, ReadsEscapesBeforeItLooksForQuotes) {
  EXPECT_EQ(consoleTokens(R"(a\nb\r\t\b\f)"), Tokens{"a\nb\r\t\b\f"});
  EXPECT_EQ(consoleTokens(R"(a\\nb)"), Tokens{R"(a\nb)"});
  EXPECT_EQ(consoleTokens(R"(\\\\n \\\n)"), (Tokens{R"(\\n)", "\\\n"}));
  EXPECT_EQ(consoleTokens(R"(\x \)"), (Tokens{R"(\x)", "\\"}));
  // An escaped quote is a quote like any other, one behind a double backslash too.
  EXPECT_EQ(consoleTokens(R"("a\"b)"), (Tokens{"a", "b"}));
  EXPECT_EQ(consoleTokens(R"("a\\" b)"), (Tokens{"a\\", "b"}));
}

TEST(ConsoleTokeniser, GivesTheLogNoMoreThanACommandsName) {
  EXPECT_EQ(consoleCommandWord("  auth secret"), "auth");
  EXPECT_EQ(consoleCommandWord(R"("auth" secret)"), "auth");
  EXPECT_EQ(consoleCommandWord(R"("auth secret)"), "auth");
  EXPECT_EQ(consoleCommandWord(R"(auth\tsecret)"), "auth");
  EXPECT_EQ(consoleCommandWord("JSON.SET k"), "JSON.SET");
  EXPECT_EQ(consoleCommandWord("   "), "");
}

}  // namespace
}  // namespace tarn::test
