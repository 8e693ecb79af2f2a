#include "platform/foundation/Base64.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSUUID.h"
#include "platform/foundation/Utf8.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>

namespace tarn {
namespace {

TEST(Base64, EncodesAndDecodesAnyBytes) {
  std::string bytes;
  for (int i = 255; i >= 0; --i) {
    EXPECT_EQ(base64Decode(base64Encode(bytes)), Bytes(bytes));
    bytes += static_cast<char>(i);
  }
  EXPECT_EQ(base64Encode("\xFB\xFF"), "+/8=");
}

TEST(Base64, RefusesWhatIsNotStrict) {
  EXPECT_EQ(base64Decode("qw=="), "\xAB"_bytes);
  for (const char* text : {"qw== ", "qw=", "qw", "q", "====", "=w==", "qw=a",
                           "q===", "qw==qw==", "q w=", "qw\n=", "qw-_", "YWJj\n", "\xC3\xA9\xC3\xA9"}) {
    EXPECT_EQ(base64Decode(text), std::nullopt) << text;
  }
}

TEST(NSUUID, HasAnUpperCaseTextAndReadsEither) {
  const auto uuid = NSUUID::fromString("0123abcd-EF01-2345-6789-abcdef012345");
  ASSERT_TRUE(uuid);
  EXPECT_EQ(uuid->uuidString(), "0123ABCD-EF01-2345-6789-ABCDEF012345");
  for (const char* text : {"0123abcdEEF01-2345-6789-abcdef01234-5", "g123abcd-EF01-2345-6789-abcdef012345",
                           "0123abcd-EF01-2345-6789-abcdef0123456"}) {
    EXPECT_EQ(NSUUID::fromString(text), std::nullopt) << text;
  }
}

TEST(NSLocalizedString, TakesValuesAsPlainText) {
  EXPECT_EQ(replacingPlaceholder("{0} and {0}, {1}", "{0}", "$1 {0} \\"), "$1 {0} \\ and $1 {0} \\, {1}");
}

TEST(LogDeathTest, GoesOnWhenItsReaderIsGone) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto logIntoNothing = [] {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0 || dup2(ends[1], STDOUT_FILENO) < 0) std::exit(1);
    close(ends[0]);
    outliveLogReader();
    logLine("unread");
    std::exit(0);
  };
  EXPECT_EXIT(logIntoNothing(), testing::ExitedWithCode(0), "");
}

TEST(Utf8, IsValidInItsShortestFormsOnly) {
  for (const char* text : {"", "ascii only, and longer than a word", "é", "\u0800", "\uFFFF", "\U00010000",
                           "\U0010FFFF", "aé中😀b", "\xED\x9F\xBF", "\xEE\x80\x80"}) {
    EXPECT_TRUE(isValidUtf8(text)) << text;
  }
  for (const char* text :
       {"\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80",
        "12345678\xC3", "\xE4\xB8", "\xE4\xB8z", "\xF0\x9F\x98", "\xF0\x9F\x98z"}) {
    EXPECT_FALSE(isValidUtf8(text)) << text;
  }
  EXPECT_TRUE(isAscii(std::string("0123456789\0\x7F", 12)));
  EXPECT_FALSE(isAscii("0123456789\x80"));
}

TEST(Utf8, IsCutBetweenCharactersOnly) {
  const std::string prefixes[] = {"", "a", "a", "a", "a中", "a中", "a中", "a中", "a中😀"};
  for (std::size_t size = 0; size < std::size(prefixes); ++size)
    EXPECT_EQ(utf8Prefix("a中😀", size), prefixes[size]);
  EXPECT_EQ(utf8Prefix(std::string(10, '\x80'), 9).size(), 6U);
}

}  // namespace
}  // namespace tarn
