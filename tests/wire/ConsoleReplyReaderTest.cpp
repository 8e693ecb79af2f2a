#include "tests/wire/MemoryCalls.h"
#include "wire/reply/ConsoleReplyReader.h"

#include <gtest/gtest.h>

namespace tarn::test {
namespace {

struct ConsoleReading {
  std::string text;
  std::optional<std::string> failure;
  // What the reader left in the stream.
  std::string rest;
};

ConsoleReading readConsole(std::string_view stream, std::size_t arrival = MemoryCalls::wholeAtOnce) {
  ConsoleReading reading;
  reading.rest = MemoryCalls::feed<ConsoleReplyReader>(stream, arrival, [&](ConsoleReplyReader& reader) {
    reading.text = reader.readReply();
    reading.failure = reader.failure();
  });
  return reading;
}

// Of a whole reply that another one follows; it must read the same byte by byte.
std::string textOf(const std::string& reply) {
  const ConsoleReading whole = readConsole(reply + "+NEXT\r\n");
  EXPECT_EQ(whole.failure, std::nullopt) << reply;
  EXPECT_EQ(whole.rest, "+NEXT\r\n") << reply;
  EXPECT_EQ(readConsole(reply + "+NEXT\r\n", 1).text, whole.text) << reply;
  return whole.text;
}

TEST(ConsoleReplyReader, ShowsLinesWithTheirType) {
  EXPECT_EQ(textOf("+PONG\r\n"), "PONG");
  EXPECT_EQ(textOf("-ERR x\r\n"), "ERR x");
  EXPECT_EQ(textOf(":12\r\n"), "(int)12");
  EXPECT_EQ(textOf(",1.5\r\n"), "(double)1.5");
  EXPECT_EQ(textOf("_\r\n"), "(nil)");
  EXPECT_EQ(textOf("#t\r\n"), "(bool)t");
  EXPECT_EQ(textOf("?what\r\n"), "what");
  EXPECT_EQ(textOf("!5\r\nERR x\r\n"), "5");
}

TEST(ConsoleReplyReader, ShowsBytesAsTextOrAsMarkedBase64) {
  EXPECT_EQ(textOf("$3\r\nabc\r\n"), "abc");
  EXPECT_EQ(textOf("=7\r\ntxt:abc\r\n"), "txt:abc");
  EXPECT_EQ(textOf("$0\r\n\r\n"), "");
  EXPECT_EQ(textOf("$-1\r\n"), "(nil)");
  EXPECT_EQ(textOf("$3\r\n\xE4\xB8\xAD\r\n"), "中");
  EXPECT_EQ(textOf("$2\r\n\xAB\x0A\r\n"), "\\Bqwo=");
  EXPECT_EQ(textOf("$4\r\n\\Bqw\r\n"), "\\\\Bqw");
}

TEST(ConsoleReplyReader, NumbersTheElementsOfArrays) {
  EXPECT_EQ(textOf("*0\r\n"), "(empty list or set)");
  EXPECT_EQ(textOf("*-1\r\n"), "(empty list or set)");
  EXPECT_EQ(textOf("*2\r\n$1\r\na\r\n$1\r\nb\r\n"), "\n1)\ta\n2)\tb");
  EXPECT_EQ(textOf("*4\r\n:1\r\n$-1\r\n-ERR x\r\n$0\r\n\r\n"), "\n1)\t(int)1\n2)\t(nil)\n3)\tERR x\n4)\t");
  EXPECT_EQ(textOf("*2\r\n$1\r\n0\r\n*2\r\n$1\r\na\r\n:2\r\n"), "\n1)\t0\n2)\t1)\ta\n\t2)\t(int)2\n");
  EXPECT_EQ(textOf("*2\r\n*0\r\n+x\r\n"), "\n1)(empty list or set)\n2)\tx");
  EXPECT_EQ(textOf("*3\r\n!3\r\nabc\r\n?x\r\n+y\r\n"), "\n1)\n2)\n3)\ty");
}

TEST(ConsoleReplyReader, StaysInStepBehindWhatItDoesNotShow) {
  EXPECT_EQ(textOf("%2\r\n+a\r\n:1\r\n+b\r\n*1\r\n:2\r\n"), "(map)");
  EXPECT_EQ(textOf("~2\r\n+a\r\n+b\r\n"), "(map)");
  EXPECT_EQ(textOf("*1\r\n~2\r\n+a\r\n+b\r\n"), "\n1)\t1)\ta\n\t2)\tb\n");
  EXPECT_EQ(textOf("*2\r\n%1\r\n+a\r\n:1\r\n+x\r\n"), "\n1)\t1)\ta\n\n2)\tx");
  EXPECT_EQ(textOf("*1\r\n*3\r\n+a\r\n*1\r\n*1\r\n+deep\r\n+c\r\n"), "\n1)(Err) Server reply: Error\n\t3)\tc\n");
  EXPECT_EQ(textOf("*1\r\n*2\r\n+a\r\n?b\r\n"), "\n1)(Err) Server reply: Error\n");
  EXPECT_EQ(textOf(">2\r\n+message\r\n+x\r\n+OK\r\n"), "OK");
  EXPECT_EQ(textOf("*2\r\n|1\r\n+a\r\n+b\r\n:1\r\n:2\r\n"), "\n1)\t(int)1\n2)\t(int)2");
}

// Each failure at each place, at the top of a reply and inside it, where it ends the reply.
TEST(ConsoleReplyReader, EndsABrokenReplyWithWhatThereWasAndTheMessage) {
  const char* const lost = "(Err) Can not connect to server";
  const char* const undecodable = "(Err) Server reply Error, unrecognized reply.";
  struct Broken {
    const char* stream;
    const char* text;
    const char* message;
  };
  for (const Broken& broken : std::initializer_list<Broken>{
           {"", "", "Can not connect to server"},
           {"\xC3", "", undecodable},
           {"+O", "", lost},
           {"-ERR caf\xC3\xA9\r\n", "", undecodable},
           {"?x", "", lost},
           {"$3", "", "(Err) Can not connect to server(738)"},
           {"$\xC3\r\n", "", "(Err) Server reply Error, unrecognized reply(765)"},
           {"$x\r\n", "", "(Err) Server reply Error, unrecognized reply count(775)"},
           {"$9999999999\r\n", "", "(Err) Server reply Error, unrecognized reply count(775)"},
           {"$3\r\nab", "", lost},
           {"$3\r\nabc\r", "", lost},
           {"*2", "", "(Err) Can not connect to server(834)"},
           {"*\xC3\r\n", "", "(Err) Server reply Error, unrecognized reply(870)"},
           {"%x\r\n", "", "(Err) Server reply Error, can not covert data to count value(859)"},
           {"*2\r\n+a\r\n", "\n1)\ta\n2)\t", "Can not connect to server"},
           {"*2\r\n+a\r\n\xC3", "\n1)\ta\n2)\t", undecodable},
           {"*2\r\n+a\r\n:1", "\n1)\ta\n2)\t", lost},
           {"*2\r\n+a\r\n$5\r\nxy", "\n1)\ta\n2)\t", lost},
           {"*2\r\n+a\r\n$", "\n1)\ta\n2)\t", "(Err) Can not connect to server(738)"},
           {"*2\r\n+a\r\n*", "\n1)\ta\n2)\t", "(Err) Can not connect to server(834)"},
           {"*2\r\n+a\r\n*\xC3\r\n", "\n1)\ta\n2)\t", "(Err) Server reply Error, unrecognized reply(870)"},
           {"*2\r\n+a\r\n*x\r\n", "\n1)\ta\n2)\t", "(Err) Server reply Error, can not covert data to count value(859)"},
           {"*1\r\n*2\r\n+a\r\n$x\r\n", "\n1)\t1)\ta\n\t2)\t",
            "(Err) Server reply Error, unrecognized reply count(775)"},
           {"%1\r\n+a\r\n", "(map)\t", "Can not connect to server"},
       }) {
    const ConsoleReading reading = readConsole(broken.stream);
    EXPECT_EQ(reading.text, std::string(broken.text) + broken.message) << broken.stream;
    EXPECT_EQ(reading.failure, broken.message) << broken.stream;
  }
}

TEST(ConsoleReplyReader, RefusesWhatIsTooDeepToRead) {
  std::string deep;
  for (int depth = 0; depth < 200; ++depth)
    deep += "*1\r\n";
  EXPECT_EQ(readConsole(deep + ":1\r\n").failure, "(Err) Server reply Error, can not covert data to count value(859)");
}

}  // namespace
}  // namespace tarn::test
