#include "tests/wire/MemoryCalls.h"
#include "wire/reply/ReplyReader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarn::test {
namespace {

using namespace std::string_view_literals;

struct Reading {
  ReplyResult result;
  bool lost = false;
  std::string rest;
};

Reading read(std::string_view stream, std::size_t arrival = MemoryCalls::wholeAtOnce) {
  Reading reading;
  reading.rest = MemoryCalls::feed<ReplyReader>(stream, arrival, [&](ReplyReader& reader) {
    reading.result = reader.readReply();
    reading.lost = reader.lostConnection();
  });
  return reading;
}

std::string nested(char type, int depth) {
  std::string stream;
  for (int i = 0; i < depth; ++i)
    stream += type + std::string("1\r\n");
  return stream;
}

std::vector<std::string> listOf(const ReplyResult& result) {
  std::vector<std::string> texts;
  for (const Bytes& item : result.list.value())
    texts.emplace_back(item.view());
  return texts;
}

using Type = ReplyType;
using Value = std::optional<ReplyResult::Value>;

TEST(ReplyReader, MakesAValueOfEachKindOfLineAndBulk) {
  struct Case {
    std::string_view stream;
    bool ok;
    std::string message;
    Value value;
    Type type;
  };
  const std::vector<Case> cases{
      {"+OK\r\n", true, "OK", "OK", Type::REDIS_REPLY_STATUS},
      {"+a\rb\nc\r\n", true, "a\rb\nc", "a\rb\nc", Type::REDIS_REPLY_STATUS},
      {"+a\r\r\n", true, "a\r", "a\r", Type::REDIS_REPLY_STATUS},
      {"+\n\r\n", true, "\n", "\n", Type::REDIS_REPLY_STATUS},
      {"-ERR x\r\n", false, "ERR x", {}, Type::REDIS_REPLY_ERROR},
      {":12\r\n", true, "12", std::int64_t{12}, Type::REDIS_REPLY_INTEGER},
      {":-9223372036854775808\r\n", true, "-9223372036854775808", INT64_MIN, Type::REDIS_REPLY_INTEGER},
      {":9223372036854775808\r\n", true, "9223372036854775808", {}, Type::REDIS_REPLY_INTEGER},
      {":x\r\n", true, "x", {}, Type::REDIS_REPLY_INTEGER},
      {":\r\n", true, "", {}, Type::REDIS_REPLY_INTEGER},
      {",1.5e3\r\n", true, "1.5e3", 1500.0, Type::REDIS_REPLY_DOUBLE},
      {",1.5x\r\n", true, "1.5x", {}, Type::REDIS_REPLY_DOUBLE},
      {"_\r\n", true, "", {}, Type::REDIS_REPLY_NIL},
      {"#true\r\n", true, "true", true, Type::REDIS_REPLY_BOOL},
      {"#t\r\n", true, "t", {}, Type::REDIS_REPLY_BOOL},
      {"$-1\r\n", true, "-1", Bytes(), Type::REDIS_REPLY_STRING},
      {"$0\r\n\r\n", true, "0", Bytes(), Type::REDIS_REPLY_STRING},
      {"$3\r\nabcXY", true, "3", "abc"_bytes, Type::REDIS_REPLY_STRING},
      {"$+4\r\n\xFF\0\r\n\r\n"sv, true, "4", "\xFF\0\r\n"_bytes, Type::REDIS_REPLY_STRING},
      {"=7\r\ntxt:abc\r\n", true, "7", "txt:abc"_bytes, Type::REDIS_REPLY_VERB},
  };
  for (const Case& expected : cases) {
    SCOPED_TRACE(expected.stream);
    for (const std::size_t arrival : {std::size_t{1}, std::size_t{2}, std::size_t{5}, std::size_t{1000}}) {
      const Reading reading = read(std::string(expected.stream) + "+next\r\n", arrival);
      EXPECT_EQ(reading.result.ok, expected.ok);
      EXPECT_EQ(reading.result.message, expected.message);
      EXPECT_EQ(reading.result.value, expected.value);
      EXPECT_EQ(reading.result.type, expected.type);
      EXPECT_FALSE(reading.result.list);
      EXPECT_FALSE(reading.lost);
      EXPECT_EQ(reading.rest, "+next\r\n");
    }
  }
}

TEST(ReplyReader, FlattensArraysAndStaysInStep) {
  struct Case {
    std::string_view stream;
    std::vector<std::string> list;
    Type type = Type::REDIS_REPLY_ARRAY;
  };
  const std::vector<Case> cases{
      {"*0\r\n", {}},
      {"*-1\r\n", {}},
      {"*2\r\n$1\r\n0\r\n*2\r\n$1\r\na\r\n$1\r\nb\r\n", {"0", "a", "b"}},
      {"*3\r\n*1\r\n*1\r\n$1\r\na\r\n*0\r\n$-1\r\n", {"a", ""}},
      // No byte strings: told as the bytes of their line, nil as none.
      {"*6\r\n:12\r\n+OK\r\n,1.5\r\n#t\r\n_\r\n=5\r\ntxt:a\r\n", {"12", "OK", "1.5", "t", "", "txt:a"}},
      // Maps and sets are dropped, and so is what they hold.
      {"*3\r\n$1\r\na\r\n%2\r\n+k\r\n*2\r\n:1\r\n$2\r\nxy\r\n-ERR\r\n%0\r\n~2\r\n:1\r\n:2\r\n", {"a"}},
      {"%1\r\n$1\r\nk\r\n~1\r\n!3\r\nbad\r\n", {}, Type::REDIS_REPLY_MAP},
      {"~2\r\n(123\r\n^odd\r\n", {}, Type::REDIS_REPLY_SET},
      // What is pushed in between, and attributes, stand before a reply and aren't part of it.
      {">2\r\n+message\r\n$1\r\nx\r\n*1\r\n|1\r\n+ttl\r\n:3\r\n$1\r\na\r\n", {"a"}},
  };
  for (const Case& expected : cases) {
    SCOPED_TRACE(expected.stream);
    for (const std::size_t arrival : {std::size_t{1}, std::size_t{3}, std::size_t{1000}}) {
      const Reading reading = read(std::string(expected.stream) + ":7\r\n", arrival);
      EXPECT_TRUE(reading.result.ok);
      EXPECT_EQ(reading.result.type, expected.type);
      ASSERT_TRUE(reading.result.list);
      EXPECT_EQ(listOf(reading.result), expected.list);
      EXPECT_EQ(reading.result.value, Value(Bytes(expected.list.empty() ? "0" : expected.list.front())));
      EXPECT_EQ(reading.rest, ":7\r\n");
    }
  }
}

TEST(ReplyReader, DropsWhatBeginsWithAnUnknownByte) {
  for (const std::string_view stream : {"(12345678901234567890\r\n", "!5\r\nE\r\nx!\r\n", "hello\r\n", "!-1\r\n"}) {
    SCOPED_TRACE(stream);
    const Reading reading = read(std::string(stream) + "+next\r\n", 4);
    EXPECT_FALSE(reading.result.ok);
    EXPECT_EQ(reading.result.message, "Server reply: Error");
    EXPECT_FALSE(reading.result.type);
    EXPECT_FALSE(reading.lost);
    EXPECT_EQ(reading.rest, "+next\r\n");
  }
}

TEST(ReplyReader, TellsWhereAReplyWentWrong) {
  const std::string deep = nested('*', 100000);
  const std::string deepPush = nested('>', 100000);
  const std::vector<std::pair<std::string_view, std::string_view>> cases{
      {"", "Can not connect to server"},
      {"\x80", "Server reply Error, unrecognized reply."},
      {"+OK\r", "Can not connect to server"},
      {"-ERR caf\xC3\xA9\r\n", "Server reply Error, unrecognized reply."},
      {"hello", "Can not connect to server"},
      {"h\xFF\r\n", "Server reply Error, unrecognized reply."},
      {"$3", "Can not connect to server(738)"},
      {"$3\xFF\r\n", "Server reply Error, unrecognized reply(765)"},
      {"$\r\n", "Server reply Error, unrecognized reply count(775)"},
      {"$1x\r\n", "Server reply Error, unrecognized reply count(775)"},
      {"$+-1\r\n", "Server reply Error, unrecognized reply count(775)"},
      {"$4294967297\r\n", "Server reply Error, unrecognized reply count(775)"},
      {"$99999999999999999999\r\n", "Server reply Error, unrecognized reply count(775)"},
      {"$4294967296\r\nabc", "Can not connect to server"},
      {"$3\r\nab", "Can not connect to server"},
      {"$3\r\nabc\r", "Can not connect to server"},
      {"*3", "Can not connect to server(834)"},
      {"*\xC3\r\n", "Server reply Error, unrecognized reply(870)"},
      {"*\r\n", "Server reply Error, can not covert data to count value(859)"},
      {"%x\r\n", "Server reply Error, can not covert data to count value(859)"},
      {"*2147483649\r\n", "Server reply Error, can not covert data to count value(859)"},
      {">2147483649\r\n", "Server reply Error, can not covert data to count value(859)"},
      {"*2147483648\r\n:1\r\n", "Get Data from server error(788)"},
      {"*2\r\n$1\r\na\r\n$x\r\n", "Get Data from server error(788)"},
      {"*1\r\n-ERR inside\r\n", "Get Data from server error(788)"},
      {"*1\r\n(12\r\n", "Get Data from server error(788)"},
      {"%1\r\n:1\r\n", "Get Data from server error(788)"},
      {deep, "Get Data from server error(788)"},
      {deepPush, "Get Data from server error(788)"},
  };
  for (const auto& [stream, message] : cases) {
    SCOPED_TRACE(stream.substr(0, 40));
    for (const std::size_t arrival : {std::size_t{1}, std::size_t{100000}}) {
      const Reading reading = read(stream, arrival);
      EXPECT_TRUE(reading.lost);
      EXPECT_FALSE(reading.result.ok);
      EXPECT_EQ(reading.result.message, message);
      EXPECT_FALSE(reading.result.value || reading.result.list || reading.result.type);
    }
  }
}

TEST(ReplyReader, TakesNestingUpToItsLimit) {
  const std::string stream = nested('*', ReplyScanner::maxDepth);
  EXPECT_EQ(listOf(read(stream + ":1\r\n").result), std::vector<std::string>{"1"});
  EXPECT_TRUE(read("*1\r\n" + stream + ":1\r\n").lost);
}

// A reply cut anywhere is a lost connection, and one cut behind its end is whole; neither hangs nor takes a byte more.
TEST(ReplyReader, SurvivesACutAtEveryByte) {
  const std::string reply =
      "*4\r\n$30\r\n123456789012345678901234567890\r\n*2\r\n:1\r\n%1\r\n+a\r\n,1.5\r\n>1\r\n+p\r\n~1\r\n(1\r\n_\r\n";
  for (std::size_t cut = 0; cut < reply.size(); ++cut) {
    EXPECT_TRUE(read(reply.substr(0, cut)).lost) << cut;
  }
  EXPECT_FALSE(read(reply).lost);
}

// Larger than the window, with arrivals that cut lines, payloads and their ends at odd places.
TEST(ReplyReader, ReadsLargeRepliesInAnyArrivals) {
  std::string big(3 * ByteStream::windowSize + 17, 'x');
  for (std::size_t i = 0; i < big.size(); ++i)
    big[i] = static_cast<char>(i * 31);
  std::string stream = "*20002\r\n";
  std::vector<std::string> expected;
  for (int i = 0; i < 20000; ++i) {
    expected.push_back("item:" + std::to_string(i * i));
    stream += "$" + std::to_string(expected.back().size()) + "\r\n" + expected.back() + "\r\n";
  }
  for (int i = 0; i < 2; ++i) {
    expected.push_back(big);
    stream += "$" + std::to_string(big.size()) + "\r\n" + big + "\r\n";
  }
  for (const std::size_t arrival : {std::size_t{7}, std::size_t{4099}, ByteStream::windowSize, std::size_t{10000000}}) {
    const Reading reading = read(stream + ":1\r\n", arrival);
    EXPECT_EQ(listOf(reading.result), expected);
    EXPECT_EQ(reading.rest, ":1\r\n");
  }
  const std::string line = "+" + std::string(2 * ByteStream::windowSize, 'l') + "\r\n";
  EXPECT_EQ(read(line, 1001).result.message.size(), 2 * ByteStream::windowSize);
}

}  // namespace
}  // namespace tarn::test
