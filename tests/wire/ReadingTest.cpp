// What is read without a connection: the texts of a cluster and of the console, and replies.

#include "tests/wire/MemoryCalls.h"
#include "wire/cluster/NodeAddress.h"
#include "wire/console/ConsoleTokeniser.h"
#include "wire/reply/ConsoleReplyReader.h"
#include "wire/reply/ReplyReader.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace tarn::test {
namespace {

using namespace std::string_view_literals;

TEST(NodeAddress, ReadsTargetsOfRedirects) {
  EXPECT_EQ(redirectTarget("MOVED 3999 10.0.0.2:7001"), (NodeAddress{"10.0.0.2", 7001}));
  EXPECT_EQ(redirectTarget("ASK  1   node.example:0"), (NodeAddress{"node.example", 0}));
  for (const char* line : {"MOVED", "MOVED 1", "MOVED 1 ", "MOVED 1 host", "MOVED 1 host:", "MOVED 1 :7001",
                           "MOVED 1 h:x", "MOVED 1 h:65536", "MOVED 1 h:-1", "MOVED 1 h:99999999999999999999"})
    EXPECT_FALSE(redirectTarget(line)) << line;
}

TEST(NodeAddress, FindsTheMastersOfACluster) {
  const auto masters = mastersIn(
      "a1 127.0.0.1:7000@17000 myself,master - 0 0 1 connected 0-5460\n"
      "b2 127.0.0.1:7003@17003,host-name slave a1 0 0 1 connected\n\n"
      "c3 :0@0 master,noaddr - 0 0 1 disconnected\nd4 10.0.0.9:x@1 master - 0\nmaster\n"
      "e5 node.example:65535@17001,shard master,fail - 0 0 3 connected 10923-16383\n");
  EXPECT_EQ(masters, (std::vector<NodeAddress>{{"127.0.0.1", 7000}, {"node.example", 65535}}));
}

// Words end at blanks only; escapes are read before quotes are looked for, so an escaped quote is one like any other.
TEST(ConsoleTokeniser, ReadsTheWordsOfALine) {
  using Words = std::vector<std::string>;
  const std::vector<std::pair<std::string, std::optional<Words>>> cases{
      {"", Words{}},
      {"   ", Words{}},
      {R"(  set "a b"  c )", Words{"set", "a b", "c"}},
      {"set\ta\nb", Words{"set\ta\nb"}},
      {R"("a"b "" c"d"e)", Words{"a", "b", "", "c\"d\"e"}},
      {"键 \xF0\x9F\x98\x80", Words{"键", "\xF0\x9F\x98\x80"}},
      {R"(a\nb\r\t\b\f)", Words{"a\nb\r\t\b\f"}},
      {R"(a\\nb \\\\n \\\n)", Words{R"(a\nb)", R"(\\n)", "\\\n"}},
      {R"(\x \)", Words{R"(\x)", "\\"}},
      {R"("a\"b)", Words{"a", "b"}},
      {R"("a\\" b)", Words{"a\\", "b"}},
      {R"(set k "open)", std::nullopt},
      {"\"", std::nullopt},
      {R"(set "a"")", std::nullopt},
  };
  for (const auto& [line, tokens] : cases)
    EXPECT_EQ(consoleTokens(line), tokens) << line;
}

TEST(ConsoleTokeniser, GivesTheLogNoMoreThanACommandsName) {
  for (const char* line : {"  auth secret", R"("auth" secret)", R"("auth secret)", R"(auth\tsecret)"})
    EXPECT_EQ(consoleCommandWord(line), "auth") << line;
  EXPECT_EQ(consoleCommandWord("JSON.SET_a-0zAZ9 k"), "JSON.SET_a-0zAZ9");
  EXPECT_EQ(consoleCommandWord("   "), "");
}

struct Reading {
  std::string text;
  // What the reader left in the stream.
  std::string rest;
};

struct TextOf {
  std::string operator()(const std::string& text) const { return "text " + text; }
  std::string operator()(const Bytes& bytes) const { return "bytes " + std::string(bytes.view()); }
  std::string operator()(double number) const { return "double " + std::to_string(number); }
  std::string operator()(std::int64_t number) const { return "int " + std::to_string(number); }
  std::string operator()(bool flag) const { return flag ? "true" : "false"; }
};

// "TYPE ok|failed|lost: MESSAGE = VALUE|ELEMENT|ELEMENT", without what isn't there; " []" is a list without elements.
std::string textOf(const ReplyResult& result, bool isLost) {
  std::string text = result.type ? std::string(1, "-+:,_$*%~#="[static_cast<std::size_t>(*result.type)]) : "";
  text += (result.ok ? "ok: " : isLost ? "lost: " : "failed: ") + result.message;
  if (result.value) text += " = " + std::visit(TextOf(), *result.value);
  for (const Bytes& element : result.list.value_or(std::vector<Bytes>()))
    text += "|" + std::string(element.view());
  return result.list && result.list->empty() ? text + " []" : text;
}

Reading read(std::string_view stream, std::size_t arrival = MemoryCalls::wholeAtOnce) {
  Reading reading;
  reading.rest = MemoryCalls::feed<ReplyReader>(stream, arrival, [&](ReplyReader& reader) {
    const ReplyResult result = reader.readReply();
    reading.text = textOf(result, reader.lostConnection());
  });
  return reading;
}

// A failure stands behind the rest of the text, with two marks between.
Reading readConsole(std::string_view stream, std::size_t arrival = MemoryCalls::wholeAtOnce) {
  Reading reading;
  reading.rest = MemoryCalls::feed<ConsoleReplyReader>(stream, arrival, [&](ConsoleReplyReader& reader) {
    reading.text = reader.readReply();
    if (!reader.failure()) return;
    EXPECT_TRUE(reading.text.ends_with(*reader.failure()));
    reading.text.insert(reading.text.size() - reader.failure()->size(), "!!");
  });
  return reading;
}

std::string nested(char type, int depth) {
  std::string text;
  for (int i = 0; i < depth; ++i)
    text += type + std::string("1\r\n");
  return text;
}

constexpr const char* lostElement = "lost: Get Data from server error(788)";
constexpr std::array<std::size_t, 3> arrivals{1, 3, 1000};

// Each stream is one reply, which reads the same in whatever parts it arrives, and to its last byte only.
TEST(Replies, ReadAsAResultAndAsTheConsolesText) {
  // Stream, result, text of the console.
  // clang-format off
  const std::vector<std::array<std::string_view, 3>> cases{
      {"+OK\r\n", "+ok: OK = text OK", "OK"},
      {"+a\rb\nc\r\n", "+ok: a\rb\nc = text a\rb\nc", "a\rb\nc"},
      {"+a\r\r\n", "+ok: a\r = text a\r", "a\r"},
      {"-ERR x\r\n", "-failed: ERR x", "ERR x"},
      {":12\r\n", ":ok: 12 = int 12", "(int)12"},
      {":-9223372036854775808\r\n", ":ok: -9223372036854775808 = int -9223372036854775808", "(int)-9223372036854775808"},
      {":9223372036854775808\r\n", ":ok: 9223372036854775808", "(int)9223372036854775808"},
      {":x\r\n", ":ok: x", "(int)x"},
      {",1.5e3\r\n", ",ok: 1.5e3 = double 1500.000000", "(double)1.5e3"},
      {",1.5x\r\n", ",ok: 1.5x", "(double)1.5x"},
      {"_\r\n", "_ok: ", "(nil)"},
      {"#true\r\n", "#ok: true = true", "(bool)true"},
      {"#false\r\n", "#ok: false = false", "(bool)false"},
      {"#t\r\n", "#ok: t", "(bool)t"},
      {"$-1\r\n", "$ok: -1 = bytes ", "(nil)"},
      {"$0\r\n\r\n", "$ok: 0 = bytes ", ""},
      {"$3\r\nabcXY", "$ok: 3 = bytes abc", "abc"},
      {"$+4\r\n\xFF\0\r\n\r\n"sv, "$ok: 4 = bytes \xFF\0\r\n"sv, "\\B/wANCg=="},
      {"$3\r\n\xE4\xB8\xAD\r\n", "$ok: 3 = bytes \xE4\xB8\xAD", "\xE4\xB8\xAD"},
      {"$4\r\n\\Bqw\r\n", "$ok: 4 = bytes \\Bqw", "\\\\Bqw"},
      {"=7\r\ntxt:abc\r\n", "=ok: 7 = bytes txt:abc", "txt:abc"},
      // What begins with an unknown byte.
      {"(12345678901234567890\r\n", "failed: Server reply: Error", "12345678901234567890"},
      {"!5\r\nE\r\nx!\r\n", "failed: Server reply: Error", "5"},
      // Arrays are flattened; of the elements of maps and sets nothing is kept.
      {"*0\r\n", "*ok: 0 = bytes 0 []", "(empty list or set)"},
      {"*-1\r\n", "*ok: -1 = bytes 0 []", "(empty list or set)"},
      {"*2\r\n$1\r\n0\r\n*2\r\n$1\r\na\r\n:2\r\n", "*ok: 2 = bytes 0|0|a|2", "\n1)\t0\n2)\t1)\ta\n\t2)\t(int)2\n"},
      {"*3\r\n*1\r\n*1\r\n$1\r\na\r\n*0\r\n$-1\r\n", "*ok: 3 = bytes a|a|",
       "\n1)(Err) Server reply: Error\n\n2)(empty list or set)\n3)\t(nil)"},
      {"*6\r\n:12\r\n+OK\r\n,1.5\r\n#t\r\n_\r\n=5\r\ntxt:a\r\n", "*ok: 6 = bytes 12|12|OK|1.5|t||txt:a",
       "\n1)\t(int)12\n2)\tOK\n3)\t(double)1.5\n4)\t(bool)t\n5)\t(nil)\n6)\ttxt:a"},
      {"*3\r\n$1\r\na\r\n%2\r\n+k\r\n*2\r\n:1\r\n$2\r\nxy\r\n-ERR\r\n%0\r\n~2\r\n:1\r\n:2\r\n", "*ok: 3 = bytes a|a",
       "\n1)\ta\n2)(Err) Server reply: Error\n\n3)\t1)\t(int)1\n\t2)\t(int)2\n"},
      {"*2\r\n%1\r\n+a\r\n:1\r\n+x\r\n", "*ok: 2 = bytes x|x", "\n1)\t1)\ta\n\n2)\tx"},
      {"%1\r\n$1\r\nk\r\n~1\r\n!3\r\nbad\r\n", "%ok: 1 = bytes 0 []", "(map)"},
      {"~2\r\n(123\r\n^odd\r\n", "~ok: 2 = bytes 0 []", "(map)"},
      {"*1\r\n*3\r\n+a\r\n*1\r\n*1\r\n+deep\r\n+c\r\n", "*ok: 1 = bytes a|a|deep|c",
       "\n1)(Err) Server reply: Error\n\t3)\tc\n"},
      // What is pushed in between, and attributes, stand before a reply and aren't part of it.
      {">2\r\n+message\r\n$1\r\nx\r\n*1\r\n|1\r\n+ttl\r\n:3\r\n$1\r\na\r\n", "*ok: 1 = bytes a|a", "\n1)\ta"},
      // The console shows what the reader can't keep.
      {"*4\r\n:1\r\n$-1\r\n-ERR x\r\n$0\r\n\r\n", lostElement, "\n1)\t(int)1\n2)\t(nil)\n3)\tERR x\n4)\t"},
      {"*3\r\n!3\r\nabc\r\n?x\r\n+y\r\n", lostElement, "\n1)\n2)\n3)\ty"},
      {"*1\r\n*2\r\n+a\r\n?b\r\n", lostElement, "\n1)(Err) Server reply: Error\n"},
  };
  // clang-format on
  for (const auto& [stream, result, text] : cases) {
    SCOPED_TRACE(stream);
    for (const std::size_t arrival : arrivals) {
      const Reading reading = read(std::string(stream) + "+next\r\n", arrival);
      EXPECT_EQ(reading.text, result);
      EXPECT_TRUE(result == lostElement || reading.rest == "+next\r\n") << reading.rest;
      const Reading console = readConsole(std::string(stream) + "+next\r\n", arrival);
      EXPECT_EQ(console.text + console.rest, std::string(text) + "+next\r\n");
    }
    for (std::size_t cut = 0; cut < stream.size(); ++cut) {
      EXPECT_TRUE(read(stream.substr(0, cut)).text.starts_with("lost: ")) << cut;
      EXPECT_NE(readConsole(stream.substr(0, cut)).text.find("!!"), std::string::npos) << cut;
    }
  }
}

// Each failure at each place, at the top of a reply, where both readers name it alike, and inside it, where the console
// alone names it, behind what it shows of the reply.
TEST(Replies, EndWhereTheyAreBrokenAndTellWhy) {
  const std::string lost = "(Err) Can not connect to server";
  const std::string undecodable = "(Err) Server reply Error, unrecognized reply.";
  const std::string badLength = "(Err) Server reply Error, unrecognized reply count(775)";
  const std::string badCount = "(Err) Server reply Error, can not covert data to count value(859)";
  const std::string tooDeep = "*1\r\n" + nested('*', ReplyScanner::maxDepth);
  // clang-format off
  const std::vector<std::tuple<std::string, std::string, std::string>> cases{
      {"", "", "Can not connect to server"},
      {"\x80", "", undecodable},
      {"+OK\r", "", lost},
      {"-ERR caf\xC3\xA9\r\n", "", undecodable},
      {"hello", "", lost},
      {"$3", "", lost + "(738)"},
      {"$3\xFF\r\n", "", "(Err) Server reply Error, unrecognized reply(765)"},
      {"$1x\r\n", "", badLength},
      {"$+-1\r\n", "", badLength},
      {"$4294967297\r\n", "", badLength},
      {"$99999999999999999999\r\n", "", badLength},
      {"$4294967296\r\nabc", "", lost},
      {"*3", "", lost + "(834)"},
      {"*\xC3\r\n", "", "(Err) Server reply Error, unrecognized reply(870)"},
      {"*\r\n", "", badCount},
      {"*2147483649\r\n", "", badCount},
      {">2147483649\r\n", "", badCount},
      {"*2147483648\r\n:1\r\n", "\n1)\t(int)1\n2)\t", "Can not connect to server"},
      {"*2\r\n+a\r\n\xC3", "\n1)\ta\n2)\t", undecodable},
      {"*2\r\n+a\r\n:1", "\n1)\ta\n2)\t", lost},
      {"*2\r\n+a\r\n$x\r\n", "\n1)\ta\n2)\t", badLength},
      {"*2\r\n+a\r\n*x\r\n", "\n1)\ta\n2)\t", badCount},
      {"*1\r\n*2\r\n+a\r\n$x\r\n", "\n1)\t1)\ta\n\t2)\t", badLength},
      {"%1\r\n+a\r\n", "(map)\t", "Can not connect to server"},
  };
  // clang-format on
  for (const auto& [stream, shown, failure] : cases) {
    SCOPED_TRACE(stream);
    const std::string top = "lost: " + failure.substr(failure.starts_with("(Err) ") ? 6 : 0);
    for (const std::size_t arrival : arrivals) {
      EXPECT_EQ(read(stream, arrival).text, shown.empty() ? top : lostElement);
      EXPECT_EQ(readConsole(stream, arrival).text, shown + "!!" + failure);
    }
  }
  EXPECT_EQ(read(tooDeep.substr(4) + ":1\r\n").text, "*ok: 1 = bytes 1|1");
  EXPECT_EQ(read(tooDeep + ":1\r\n").text, lostElement);
  EXPECT_TRUE(readConsole(tooDeep + ":1\r\n").text.ends_with("!!" + badCount));
  EXPECT_EQ(read(nested('>', 100000)).text, lostElement);
}

// Larger than the window, with arrivals that cut lines, payloads and their ends at odd places.
TEST(Replies, MayBeLargerThanTheWindow) {
  std::string big(3 * ByteStream::windowSize + 17, 'x');
  for (std::size_t i = 0; i < big.size(); ++i)
    big[i] = static_cast<char>(i * 31);
  std::string stream = "*20001\r\n";
  std::string expected = "*ok: 20001 = bytes item:0";
  for (int i = 0; i <= 20000; ++i) {
    const std::string element = i == 20000 ? big : "item:" + std::to_string(i);
    stream += "$" + std::to_string(element.size()) + "\r\n" + element + "\r\n";
    expected += "|" + element;
  }
  const std::string line(2 * ByteStream::windowSize, 'l');
  for (const std::size_t arrival : {std::size_t{7}, std::size_t{4099}, ByteStream::windowSize, std::size_t{10000000}}) {
    const Reading reading = read(stream + ":1\r\n", arrival);
    EXPECT_TRUE(reading.text == expected);
    EXPECT_EQ(reading.rest, ":1\r\n");
    EXPECT_EQ(readConsole("+" + line + "\r\n", arrival).text, line);
  }
}

}  // namespace
}  // namespace tarn::test
