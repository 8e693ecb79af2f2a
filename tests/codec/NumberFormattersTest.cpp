#include "formatters/CouldNegativeNumberFormatter.h"
#include "formatters/PositiveIntegerValueFormatter.h"
#include "formatters/RequiredCouldNegativeDoubleFormatter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarn {
namespace {

// What the formatters answer to texts, and what they log with it.
TEST(NumberFormatters, TakeTheTextsOfTheirNumbersAndLogTheirAnswers) {
  struct Case {
    const NSFormatter& formatter;
    bool answer;
    std::string log;
    std::vector<std::string> texts;
  };
  const PositiveIntegerValueFormatter port;
  const CouldNegativeNumberFormatter number;
  const RequiredCouldNegativeDoubleFormatter score;
  const std::string sixteen(16, '1');
  const std::vector<Case> cases{
      {port, true, "", {"", "0", "7", "65535"}},
      {port, false, "", {"65536", "01", "-1", "1a", " 1", "1\n", std::string(26, '9'), "１", std::string("1\0", 2)}},
      {number, true, "", {""}},
      {number, true, "true\n", {"-", "-5", "0", "10", std::string(40, '9')}},
      {number, false, "false\n", {"-0", "5-", "--", "007", "-05", "1.5", "+1"}},
      {score, true, "", {"", "-", "0", "1.5", "-1.5", "0.", "-0.5", "-0.", "12.", "-7", sixteen, "0.12345678901234"}},
      {score, false, "false\n", {".5", "1e5", "-0", "00.5", "-.5", "1.5.", "1,5", "01", "x", "-" + sixteen + "11"}},
      // Too long, but a number.
      {score, false, "", {sixteen + "1", "-" + sixteen + "1", "0.123456789012345"}},
  };
  for (const auto& [formatter, answer, log, texts] : cases) {
    for (const std::string& text : texts) {
      testing::internal::CaptureStdout();
      EXPECT_EQ(formatter.isPartialStringValid(text), answer) << text;
      EXPECT_EQ(testing::internal::GetCapturedStdout(), log) << text;
    }
  }
}

}  // namespace
}  // namespace tarn
