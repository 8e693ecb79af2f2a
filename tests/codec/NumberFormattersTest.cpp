#include "formatters/CouldNegativeNumberFormatter.h"
#include "formatters/PositiveIntegerValueFormatter.h"
#include "formatters/RequiredCouldNegativeDoubleFormatter.h"

#include <gtest/gtest.h>

#include <string>

namespace tarn {
namespace {

// What a formatter answers to a text, and what it logs.
template <typename Formatter>
void expectAnswers(bool answer, const std::string& log, std::initializer_list<std::string> texts) {
  for (const std::string& text : texts) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(Formatter().isPartialStringValid(text), answer) << text;
    EXPECT_EQ(testing::internal::GetCapturedStdout(), log) << text;
  }
}

const std::string sixteenDigits(16, '1');

TEST(PositiveIntegerValueFormatter, TakesPorts) {
  expectAnswers<PositiveIntegerValueFormatter>(true, "", {"", "0", "7", "65535"});
  expectAnswers<PositiveIntegerValueFormatter>(
      false, "", {"65536", "01", "-1", "1a", " 1", "1\n", std::string(26, '9'), "１", std::string("1\0", 2)});
}

TEST(CouldNegativeNumberFormatter, TakesNumbersOfAnySizeAndLogsItsAnswer) {
  using Formatter = CouldNegativeNumberFormatter;
  expectAnswers<Formatter>(true, "", {""});
  expectAnswers<Formatter>(true, "true\n", {"-", "-5", "0", "10", std::string(40, '9')});
  expectAnswers<Formatter>(false, "false\n", {"-0", "5-", "--", "007", "-05", "1.5", "+1"});
}

TEST(RequiredCouldNegativeDoubleFormatter, TakesDecimalsOfSixteenCharactersAndLogsWhatIsNone) {
  using Formatter = RequiredCouldNegativeDoubleFormatter;
  expectAnswers<Formatter>(
      true, "", {"", "-", "0", "1.5", "-1.5", "0.", "-0.5", "-0.", "12.", "-7", sixteenDigits, "0.12345678901234"});
  expectAnswers<Formatter>(false, "false\n", {".5", "1e5", "-0", "00.5", "-.5", "1.5.", "1,5", "01", "x"});
  // Too long, but a number.
  expectAnswers<Formatter>(false, "", {sixteenDigits + "1", "-" + sixteenDigits + "1", "0.123456789012345"});
  expectAnswers<Formatter>(false, "false\n", {"-" + sixteenDigits + "11"});
}

}  // namespace
}  // namespace tarn
