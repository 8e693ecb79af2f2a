#include "wire/connection/ServerSession.h"

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace tarn::test {
namespace {

// Console lines and their replies: a status, an error, or an array with what the console shows of it behind the "*".
using Lines = std::vector<std::pair<std::string, std::string>>;

// Behind each line the database, "t" in a transaction, "?N" where database N is the other one that it may be, and "!"
// where more is to come.
std::string followed(const Lines& lines) {
  ServerSession session;
  std::string log;
  for (const auto& [line, reply] : lines) {
    std::istringstream words(line);
    const std::vector<std::string> tokens{std::istream_iterator<std::string>(words), {}};
    const ReplyType type = reply[0] == '+'   ? ReplyType::REDIS_REPLY_STATUS
                           : reply[0] == '-' ? ReplyType::REDIS_REPLY_ERROR
                                             : ReplyType::REDIS_REPLY_ARRAY;
    const auto after = session.follow(tokens, type, reply.substr(1));
    log += (log.empty() ? "" : " ") + std::to_string(session.database()) + (session.hasOpenTransaction() ? "t" : "");
    if (after.otherDatabase) log += "?" + std::to_string(*after.otherDatabase);
    if (after.moreToCome) log += "!";
  }
  return log;
}

TEST(ServerSession, FollowsTheDatabaseAndWhatIsToCome) {
  const Lines::value_type multi{"MULTI", "+OK"}, select2{"select 2", "+QUEUED"}, subscribe{"subscribe a", "+QUEUED"},
      exec{"Exec", "*\n1)\tOK"};
  // clang-format off
  const std::vector<std::pair<Lines, std::string>> cases{
      {{{"SELECT 3", "+OK"}, {"select 4", "-ERR"}, {"select", "+OK"}, {"get k", "+OK"}, {"reset", "+RESET"}}, "3 3 3 3 0"},
      {{{"select x", "+OK"}}, "-1"},
      {{multi, select2, exec}, "0t 2t 2?0"},
      {{multi, {"multi", "-ERR"}, exec}, "0t 0t 0"},
      {{multi, select2, {"discard", "+OK"}}, "0t 2t 0"},
      {{multi, select2, {"exec", "-EXECABORT"}}, "0t 2t 0"},
      {{multi, select2, {"exec", "*(empty list or set)"}}, "0t 2t 0"},
      {{multi, select2, {"reset", "+RESET"}, exec}, "0t 2t 0 0"},
      {{{"select 2", "+OK"}, {"discard", "-ERR"}, {"exec", "-ERR"}}, "2 2 2"},
      {{{"subscribe a", "*\n1)\tsubscribe"}, {"MONITOR", "+OK"}, {"psync ? -1", "-ERR"}}, "0! 0! 0"},
      {{multi, subscribe, exec, multi, exec}, "0t 0t 0! 0t 0"},
      {{multi, select2, subscribe, exec}, "0t 2t 2t 2?0!"},
      {{multi, subscribe, {"discard", "+OK"}, multi, exec}, "0t 0t 0 0t 0"},
      {{multi, subscribe, {"reset", "+RESET"}, multi, exec}, "0t 0t 0 0t 0"},
  };
  // clang-format on
  for (const auto& [lines, log] : cases)
    EXPECT_EQ(followed(lines), log);
}

TEST(ServerSession, KnowsTheLinesThatMayMoveTheDatabase) {
  for (const char* word : {"select", "SELECT", "reset", "exec", "Discard"})
    EXPECT_TRUE(ServerSession::mayMoveDatabase({word, "1"})) << word;
  EXPECT_FALSE(ServerSession::mayMoveDatabase({"get", "select"}));
  EXPECT_FALSE(ServerSession::mayMoveDatabase({}));
}

}  // namespace
}  // namespace tarn::test
