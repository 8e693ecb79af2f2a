#include "platform/foundation/Base64.h"
#include "platform/foundation/Bytes.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/Utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace tarn {
namespace {

TEST(Bytes, KeepWhatTheyHoldAcrossCopiesAndMoves) {
  const std::string texts[] = {"", std::string("a\0b\xFF", 4), std::string(Bytes::inlineCapacity, 'i'),
                               std::string(Bytes::inlineCapacity + 1, 'h'), std::string(1 << 20, 'x')};
  for (const std::string& from : texts) {
    for (const std::string& to : texts) {
      Bytes source(from);
      EXPECT_EQ(source.empty(), from.empty());
      Bytes copy(to);
      copy = source;
      EXPECT_EQ(copy.view(), from);
      Bytes moved(to);
      moved = std::move(source);
      Bytes& same = moved;
      moved = same;
      moved = std::move(same);
      EXPECT_EQ(moved.view(), from);
      source = Bytes(to);
      EXPECT_EQ(source.view(), to);
    }
  }
  EXPECT_EQ("a\0b"_bytes.size(), 3U);
}

TEST(Bytes, KeepTheirBeginningWhenResizedAndAppendAlsoAPartOfThemselves) {
  Bytes bytes("beginning");
  for (const std::size_t size : {24U, 1000U, 100000U, 30U, 23U, 9U}) {
    bytes.resize(size);
    EXPECT_EQ(bytes.size(), size);
    EXPECT_EQ(bytes.view().substr(0, 9), "beginning");
  }
  bytes.append(bytes.view());
  bytes.append(bytes.view());
  bytes.append(bytes.view().substr(32));
  EXPECT_EQ(bytes.view(), "beginningbeginningbeginningbeginningning");
}

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

TEST(NSLocalizedString, TakesValuesAsPlainText) {
  EXPECT_EQ(replacingPlaceholder("{0} and {0}, {1}", "{0}", "$1 {0} \\"), "$1 {0} \\ and $1 {0} \\, {1}");
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
