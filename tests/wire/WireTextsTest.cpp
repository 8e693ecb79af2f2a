// The texts that are read and made without a connection.

#include "wire/cluster/NodeAddress.h"
#include "wire/command/Keyspace.h"
#include "wire/console/ConsoleTokeniser.h"
#include "wire/request/RequestEncoder.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarn::test {
namespace {

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

TEST(Keyspace, ReadsTheCountsOfTheDatabases) {
  const auto lines = keyspaceLines("# Server\r\nredis_version:7\r\n# Keyspace\r\ndb0:keys=12,expires=0\r\n\r\nodd\r\n");
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(databaseKeys(lines[0])->name, "db0");
  EXPECT_EQ(databaseKeys(lines[0])->count, "12");
  EXPECT_EQ(databaseKeys("db0:keys=,")->count, "");
  for (const char* line : {"odd", "db1:keys=3", "db1,keys=3", "a,db1:keys=3"})
    EXPECT_FALSE(databaseKeys(line)) << line;
  EXPECT_TRUE(keyspaceLines("# Keyspace\r\n").empty());
  EXPECT_TRUE(keyspaceLines("db0:keys=1,\r\n").empty());
}

TEST(RequestEncoder, SendsTheMultiBulkForm) {
  EXPECT_EQ(encodeRequest(RedisCommand::get, {"k"}), "*2\r\n$3\r\nget\r\n$1\r\nk\r\n"_bytes);
  EXPECT_EQ(encodeRequest(RedisCommand::auth, {""}), "*2\r\n$4\r\nAUTH\r\n$0\r\n\r\n"_bytes);
  EXPECT_EQ(encodeRequest(RedisCommand::set, {{"\r\n\0", 3}, "1234567890"}),
            "*3\r\n$3\r\nset\r\n$3\r\n\r\n\0\r\n$10\r\n1234567890\r\n"_bytes);
  EXPECT_EQ(encodeRequest(RedisCommand::raw, {"seT", "a b"}), "*2\r\n$3\r\nseT\r\n$3\r\na b\r\n"_bytes);
  EXPECT_EQ(encodeRequest(RedisCommand::clusterNodes, {"x"}), "*2\r\n$7\r\ncluster\r\n$5\r\nnodes\r\n"_bytes);
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

}  // namespace
}  // namespace tarn::test
