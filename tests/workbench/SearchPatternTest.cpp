#include "workbench/SearchPattern.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

struct Case {
  const char* text;
  const char* title;
  Match match;
  Bytes pattern;
};

TEST(SearchPattern, PutsStarsWhereTheTextIsAPartAndReadsEscapesAndBase64) {
  const Case cases[] = {
      {"user", "utf8", Match::part, "*user*"_bytes},
      {"user", "utf8", Match::whole, "user"_bytes},
      {"*user", "utf8", Match::whole, "*user"_bytes},
      {"user*", "utf8", Match::whole, "user*"_bytes},
      {"*user*", "utf8", Match::part, "*user*"_bytes},
      {"a*b", "utf8", Match::part, "*a*b*"_bytes},
      {"a**b", "utf8", Match::part, "*a*b*"_bytes},
      {"a*b*a", "utf8", Match::whole, "a*b*a"_bytes},
      {"*", "utf8", Match::part, "**"_bytes},
      {"*", "utf8", Match::whole, "**"_bytes},
      {"", "utf8", Match::part, "*"_bytes},
      {"", "Base64", Match::part, "*"_bytes},
      {"u?er[0-9]", "utf8", Match::whole, "u?er[0-9]"_bytes},
      {"line\\nfeed", "utf8", Match::whole, "line\nfeed"_bytes},
      {"\\t\\r\\b\\f", "utf8", Match::whole, "\t\r\b\f"_bytes},
      {"a\\\\n", "utf8", Match::whole, "a\\\\n"_bytes},
      {"\\Bqw==*tail", "utf8", Match::part, "*\xAB*tail*"_bytes},
      {"\\Bqw==*tail", "GBK", Match::whole, "\xAB*tail"_bytes},
      {"中*文", "GBK", Match::whole, "\xD6\xD0*\xCE\xC4"_bytes},
      {"\\B", "utf8", Match::part, "**"_bytes},
      {"qw==", "Base64", Match::part, "*\xAB*"_bytes},
      {"\\Bqw==", "Base64", Match::whole, "\xAB"_bytes},
  };
  for (const Case& c : cases) {
    const TypedBytes outcome = searchPattern(c.text, c.title, c.match);
    ASSERT_TRUE(outcome.hasValue()) << c.text << ": " << outcome.alert();
    EXPECT_EQ(outcome.value().view(), c.pattern.view()) << c.text;
    EXPECT_EQ(outcome.alert(), "");
  }
}

TEST(SearchPattern, SaysWhyATextHasNoBytes) {
  const auto alert = [](const char* text, const char* title, Match match = Match::part) {
    const TypedBytes outcome = searchPattern(text, title, match);
    EXPECT_FALSE(outcome.hasValue()) << text;
    return outcome.alert();
  };
  EXPECT_EQ(alert("ok*\\Bqw=*x", "utf8"), "Can not decode base64 part of the Search Key '\\Bqw='");
  EXPECT_EQ(alert("a*中", "iso_8859_1"), "Can not encode the Search Key to charset 'iso_8859_1'");
  EXPECT_EQ(alert("*", "Base64"), "Can not encode the Search Key from Base64");
  EXPECT_EQ(alert("qw==*", "Base64", Match::whole), "Can not encode the Search Key from Base64");
  EXPECT_EQ(alert("\\B*", "Base64"), "Can not decode base64 part of the Search Key '\\B*'");
  EXPECT_EQ(alert("", "utf8", Match::whole), "");
}

}  // namespace
}  // namespace tarn
