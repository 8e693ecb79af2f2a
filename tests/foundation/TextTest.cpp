#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/foundation/Base64.h"
#include "platform/foundation/CharsetConverter.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSUUID.h"
#include "platform/foundation/Utf8.h"

namespace tarn {
namespace {

TEST(Base64, EncodesAndDecodesAnyBytes) {
  std::string all;
  for (int i = 0; i < 256; ++i)
    all += static_cast<char>(i);
  for (std::size_t size = 0; size <= all.size(); ++size) {
    const std::string bytes = all.substr(all.size() - size);
    EXPECT_EQ(base64Decode(base64Encode(bytes)), Bytes(bytes));
  }
  EXPECT_EQ(base64Encode("\xFB\xFF"), "+/8=");
  EXPECT_EQ(base64Encode(""), "");
}

TEST(Base64, RefusesWhatIsNotStrict) {
  EXPECT_EQ(base64Decode("qw=="), "\xAB"_bytes);
  EXPECT_EQ(base64Decode(""), ""_bytes);
  for (const char* text : {"qw== ", "qw=", "qw", "q", "====", "=w==", "qw=a",
                           "q===", "qw==qw==", "q w=", "qw\n=", "qw-_", "YWJj\n", "\xC3\xA9\xC3\xA9"}) {
    EXPECT_EQ(base64Decode(text), std::nullopt) << text;
  }
}

TEST(NSUUID, HasAnUpperCaseTextAndReadsEither) {
  const auto uuid = NSUUID::fromString("0123abcd-EF01-2345-6789-abcdef012345");
  ASSERT_TRUE(uuid);
  EXPECT_EQ(uuid->uuidString(), "0123ABCD-EF01-2345-6789-ABCDEF012345");
  EXPECT_EQ(NSUUID::fromString(uuid->uuidString()), uuid);
  for (const char* text :
       {"", "0123abcd", "0123abcdEEF01-2345-6789-abcdef01234-5", "{123abcd-EF01-2345-6789-abcdef01234}",
        "g123abcd-EF01-2345-6789-abcdef012345", "0123abcd-EF01-2345-6789-abcdef0123456"}) {
    EXPECT_EQ(NSUUID::fromString(text), std::nullopt) << text;
  }
}

TEST(NSUUID, IsNewAndRandomEachTime) {
  std::set<NSUUID> made;
  for (int i = 0; i < 1000; ++i) {
    const NSUUID uuid;
    EXPECT_EQ(uuid.uuidString()[14], '4');
    EXPECT_NE(std::string("89AB").find(uuid.uuidString()[19]), std::string::npos);
    made.insert(uuid);
  }
  EXPECT_EQ(made.size(), 1000U);
}

TEST(NSLocalizedString, IsItsOwnKeyAndTakesValuesAsPlainText) {
  EXPECT_EQ(localizedString("No such text in any catalogue"), "No such text in any catalogue");
  EXPECT_EQ(localizedString(""), "");
  EXPECT_EQ(replacingPlaceholder("{0} and {0}, {1}", "{0}", "$1 {0} \\"), "$1 {0} \\ and $1 {0} \\, {1}");
  EXPECT_EQ(replacingPlaceholder("nothing here", "{0}", "x"), "nothing here");
}

TEST(NSLocalizedString, SpeaksTheLanguageOfTheDesktop) {
  const auto folder = std::filesystem::path(testing::TempDir()) / ("tarn-texts-" + NSUUID().uuidString());
  const auto messages = folder / "eo" / "LC_MESSAGES";
  std::filesystem::create_directories(messages);
  std::ofstream(messages / "tarn.po") << R"(msgid ""
msgstr "Content-Type: text/plain; charset=UTF-8\n"
msgid "Saved."
msgstr "Konservita ĉi tie."
)";
  const std::string command = "msgfmt -o '" + (messages / "tarn.mo").string() + "' '" + (messages / "tarn.po").string();
  ASSERT_EQ(std::system((command + "'").c_str()), 0);
  setenv("LC_ALL", "C.UTF-8", 1);
  setenv("LANGUAGE", "eo", 1);
  useTranslations(folder.string());
  EXPECT_EQ(localizedString("Saved."), "Konservita ĉi tie.");
  EXPECT_EQ(localizedString("Not in the catalogue"), "Not in the catalogue");
  EXPECT_EQ(localizedString(""), "");
  unsetenv("LANGUAGE");
  unsetenv("LC_ALL");
  useTranslations("/nowhere");
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(localizedString("Saved."), "Saved.");
  std::filesystem::remove_all(folder);
}

TEST(Log, WritesWholeLinesFromManyThreads) {
  testing::internal::CaptureStdout();
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([i] {
      for (int line = 0; line < 200; ++line)
        logLine(std::string(50, static_cast<char>('a' + i)));
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  std::istringstream lines(testing::internal::GetCapturedStdout());
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    ASSERT_FALSE(line.empty());
    EXPECT_EQ(line, std::string(50, line[0]));
  }
  EXPECT_EQ(count, 1600);
}

TEST(LogDeathTest, GoesOnWhenNobodyReadsIt) {
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

TEST(CharsetConverter, FailsForASetThatTheSystemDoesNotHave) {
  EXPECT_EQ(convertToUtf8("x", {"no such set", {}}), std::nullopt);
  EXPECT_EQ(convertFromUtf8("x", {"no such set", {}}), std::nullopt);
}

TEST(CharsetConverter, ConvertsOnManyThreadsAtOnce) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([] {
      for (int round = 0; round < 200; ++round) {
        EXPECT_EQ(convertToUtf8("\xD6\xD0", {"GBK", {}}), "中");
        EXPECT_EQ(convertFromUtf8("中", {"GBK", {}}), "\xD6\xD0");
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
}

}  // namespace
}  // namespace tarn
