#include "formatters/CouldNegativeNumberFormatter.h"
#include "formatters/PositiveIntegerValueFormatter.h"
#include "formatters/RequiredCouldNegativeDoubleFormatter.h"

#include <gtest/gtest.h>

#include <string>

namespace tarn {
namespace {

template <typename Formatter>
void expectTakesAndRefuses(std::initializer_list<std::string> valid, std::initializer_list<std::string> invalid) {
  const Formatter formatter;
  testing::internal::CaptureStdout();
  for (const auto& text : valid)
    EXPECT_TRUE(formatter.isPartialStringValid(text)) << text;
  for (const auto& text : invalid)
    EXPECT_FALSE(formatter.isPartialStringValid(text)) << text;
  testing::internal::GetCapturedStdout();
}

template <typename Formatter>
std::string logOf(std::string_view text) {
  testing::internal::CaptureStdout();
  static_cast<void>(Formatter().isPartialStringValid(text));
  return testing::internal::GetCapturedStdout();
}

const std::string sixteenDigits(16, '1');
const std::string seventeenDigits(17, '1');

TEST(PositiveIntegerValueFormatter, TakesPorts) {
  expectTakesAndRefuses<PositiveIntegerValueFormatter>(
      {"", "0", "7", "65535"},
      {"65536", "01", "-1", "1a", " 1", "1\n", "99999999999999999999999999", "１", std::string("1\0", 2)});
}

TEST(CouldNegativeNumberFormatter, TakesNumbersOfAnySize) {
  expectTakesAndRefuses<CouldNegativeNumberFormatter>({"", "-", "-5", "0", "10", std::string(40, '9')},
                                                      {"-0", "5-", "--", "007", "-05", "1.5", "+1"});
}

TEST(RequiredCouldNegativeDoubleFormatter, TakesDecimalsOfSixteenCharacters) {
  expectTakesAndRefuses<RequiredCouldNegativeDoubleFormatter>(
      {"", "-", "0", "1.5", "-1.5", "0.", "-0.5", "-0.", "12.", "-7", sixteenDigits, "0.12345678901234"},
      {".5", "1e5", "-0", "00.5", "-.5", "1.5.", "1,5", "01", seventeenDigits, "-" + sixteenDigits,
       "0.123456789012345"});
}

TEST(NumberFormatters, LogAsTheyAnswer) {
  EXPECT_EQ(logOf<PositiveIntegerValueFormatter>("x"), "");
  EXPECT_EQ(logOf<CouldNegativeNumberFormatter>("5"), "true\n");
  EXPECT_EQ(logOf<CouldNegativeNumberFormatter>("x"), "false\n");
  EXPECT_EQ(logOf<CouldNegativeNumberFormatter>(""), "");
  EXPECT_EQ(logOf<RequiredCouldNegativeDoubleFormatter>("1.5"), "");
  EXPECT_EQ(logOf<RequiredCouldNegativeDoubleFormatter>("x"), "false\n");
  // Too long, but a number.
  EXPECT_EQ(logOf<RequiredCouldNegativeDoubleFormatter>(seventeenDigits), "");
  EXPECT_EQ(logOf<RequiredCouldNegativeDoubleFormatter>("-1" + seventeenDigits), "false\n");
}

}  // namespace
}  // namespace tarn
