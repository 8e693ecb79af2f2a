#include "tests/wire/WireTest.h"
#include "wire/command/KeyWriting.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace tarn::test {
namespace {

using KeyWritingTest = WireTest;
using Build = std::function<void(KeyWriting&)>;

const Bytes key = "k"_bytes;
const Bytes oldKey = "o"_bytes;
const std::vector<Bytes> one{"f"_bytes};
const std::vector<std::string> score{"1.5"};
const std::vector<Bytes> two{"f"_bytes, "g"_bytes};

void setTwo(KeyWriting& writing) {
  writing.setList(two);
}
void moveTwo(KeyWriting& writing) {
  writing.moveFrom(oldKey);
  writing.setList(two);
}

std::string written(ServerItem& server, const Build& build, std::int64_t ttl) {
  KeyWriting writing(key, ttl);
  build(writing);
  const WriteOutcome outcome = server.write(writing);
  return (outcome.isWritten ? "written" : "not written") + std::string(outcome.isOldKeyGone ? ", old gone" : "") +
         (outcome.message.empty() ? "" : ": " + outcome.message + "|" + outcome.whatIsLeft.substr(0, 30));
}

const std::string unchanged = "|Nothing was changed on the ser";
const std::string gone = "|The key is no longer on the se";
const std::string noTtl = "|The value is on the server, bu";

TEST_F(KeyWritingTest, SendsAllOfAValueAsATransactionOrElseOneByOneAndTellsWhatIsLeft) {
  struct Case {
    Build build;
    std::int64_t ttl;
    Messages replies;
    std::string outcome;
    std::string sent;
  };
  const std::string ok = "+OK\r\n";
  const std::string q = "+QUEUED\r\n";
  const std::string no = "-ERR no\r\n";
  const Bytes value("\0\xFF"_bytes);
  const Build setString = [&](KeyWriting& writing) { writing.setString(value); };
  const std::string set("set k \0\xFF", 8);
  const std::string unknown = "|It isn't known whether the ser";
  // clang-format off
  const std::vector<Case> cases{
      {setString, -1, {ok, q, q, "*2\r\n:0\r\n+OK\r\n"}, "written", "multi|persist k|" + set + "|exec"},
      {setString, 0, {ok, q, "*1\r\n+OK\r\n"}, "written", "multi|" + set + " EX 0|exec"},
      {setTwo, -1, {ok, q, q, "*2\r\n:1\r\n:2\r\n"}, "written", "multi|del k|rpush k f g|exec"},
      {moveTwo, 60, {ok, q, q, q, q, "*4\r\n:1\r\n:1\r\n:2\r\n:1\r\n"}, "written, old gone", "multi|del o|del k|rpush k f g|expire k 60|exec"},
      {[](KeyWriting& writing) { writing.setSet(one); }, 5, {ok, q, q, q, "*3\r\n:1\r\n:1\r\n:1\r\n"}, "written", "multi|del k|sadd k f|expire k 5|exec"},
      // What has no partner isn't sent.
      {[](KeyWriting& writing) { writing.setHash(two, one); }, -1, {ok, q, q, "*2\r\n:1\r\n+OK\r\n"}, "written", "multi|del k|hmset k f f|exec"},
      {[](KeyWriting& writing) { writing.setSortedSet(score, two); }, -1, {ok, q, q, "*2\r\n:1\r\n:1\r\n"}, "written", "multi|del k|zadd k 1.5 f|exec"},
      // Refused before it ran, or as it ran.
      {moveTwo, -1, {ok, q, q, "-OOM full\r\n", "-EXECABORT\r\n"}, "not written: OOM full" + unchanged, "multi|del o|del k|rpush k f g|exec"},
      {setTwo, -1, {ok, q, q, "-READONLY\r\n"}, "not written: READONLY" + unchanged, "multi|del k|rpush k f g|exec"},
      {moveTwo, -1, {ok, q, q, q, "*3\r\n:1\r\n:1\r\n-ERR no\r\n"}, "not written, old gone: ERR no" + gone, "multi|del o|del k|rpush k f g|exec"},
      {setTwo, 9, {ok, q, q, q, "*3\r\n:1\r\n:2\r\n-ERR no\r\n"}, "not written: ERR no" + noTtl, "multi|del k|rpush k f g|expire k 9|exec"},
      // A reply that breaks off, or answers something else.
      {setTwo, -1, {"\xFF"}, "not written: Server reply Error, unrecognized reply." + unchanged, "multi"},
      {setTwo, -1, {ok, "\xFF"}, "not written: Server reply Error, unrecognized reply." + unknown, "multi|del k|rpush k f g|exec"},
      {setTwo, -1, {ok, q, q, "*2\r\n:1\r\n\xFF"}, "not written: Server reply Error, unrecognized reply." + unknown, "multi|del k|rpush k f g|exec"},
      {setTwo, -1, {ok, q, q, "*1\r\n:1\r\n"}, "not written: Server reply: Error" + unknown, "multi|del k|rpush k f g|exec"},
      // A server that takes no transaction: nothing follows MULTI but the plain run, and nothing a step that failed.
      {moveTwo, 60, {no, ":1\r\n", ":0\r\n", ":2\r\n", ":1\r\n"}, "written, old gone", "multi|del o|del k|rpush k f g|expire k 60"},
      {moveTwo, -1, {no, no}, "not written: ERR no" + unchanged, "multi|del o"},
      {moveTwo, -1, {no, ":1\r\n", no}, "not written, old gone: ERR no" + gone, "multi|del o|del k"},
      {setTwo, -1, {no, ":1\r\n", no}, "not written: ERR no" + gone, "multi|del k|rpush k f g"},
      {setTwo, 60, {no, ":1\r\n", ":2\r\n", no}, "not written: ERR no" + noTtl, "multi|del k|rpush k f g|expire k 60"},
      {setString, -1, {no, ":1\r\n", no}, "not written: ERR no|The key still has its former v", "multi|persist k|" + set}};
  // clang-format on
  for (const Case& expected : cases) {
    SCOPED_TRACE(expected.sent + " of row " + std::to_string(&expected - cases.data()));
    ScriptedServer peer(answering(expected.replies));
    EXPECT_EQ(written(*connectedItem(peer.port()), expected.build, expected.ttl), expected.outcome);
    EXPECT_EQ(alerts(), Messages{});
    EXPECT_EQ(peer.received().front(), requests(expected.sent));
  }
}

// Its own patience with a server is short.
class HastyCalls final : public SocketCalls {
public:
  int setOption(int descriptor, int level, int option, const void* value, socklen_t length) override {
    const timeval moment{.tv_sec = 0, .tv_usec = 50'000};
    const bool isTime = option == SO_SNDTIMEO || option == SO_RCVTIMEO;
    return SocketCalls::setOption(descriptor, level, option, isTime ? &moment : value, length);
  }
};

TEST_F(KeyWritingTest, LeavesTheOldValueWholeWhereTheServerRefusesOrStandsStill) {
  HastyCalls calls;
  RedisServer redis;
  struct Case {
    Messages refusal;
    std::string outcome;
    std::string left = "*1\r\n$3\r\nold\r\n";
  };
  const auto acl = [](const char* commands) { return Messages{"ACL", "SETUSER", "default", commands}; };
  const std::vector<Case> cases{
      {{"CONFIG", "SET", "maxmemory", "1"}, "not written: OOM" + unchanged},
      {acl("-rpush"), "not written: NOPERM" + unchanged},
      {acl("-del"), "not written: NOPERM" + unchanged},
      {{}, "not written: Can not connect to server" + unchanged},
      {acl("-multi"), "written", "*2\r\n$1\r\nf\r\n$1\r\ng\r\n"},
      {{"ACL", "SETUSER", "default", "-multi", "-del"}, "not written: NOPERM" + unchanged},
      {{"ACL", "SETUSER", "default", "-multi", "-rpush"}, "not written: NOPERM" + gone, "*0\r\n"}};
  for (const Case& expected : cases) {
    SCOPED_TRACE(::testing::PrintToString(expected.refusal));
    redis.command({"CONFIG", "SET", "maxmemory", "0"});
    redis.command(acl("+@all"));
    redis.command({"DEL", "k"});
    redis.command({"RPUSH", "k", "old"});
    const auto client = connectedItem(redis.port(), {}, calls);
    if (expected.refusal.empty()) redis.freeze();
    if (!expected.refusal.empty()) redis.command(expected.refusal);
    std::string outcome = written(*client, setTwo, -1);
    redis.thaw();
    const std::size_t word = outcome.find(": ");
    if (word != std::string::npos && !expected.refusal.empty()) {
      outcome.erase(outcome.find(' ', word + 2), outcome.find('|') - outcome.find(' ', word + 2));
    }
    EXPECT_EQ(outcome, expected.outcome);
    EXPECT_EQ(redis.command({"LRANGE", "k", "0", "-1"}), expected.left);
  }
}

// The program is killed as it writes one of two lists over the other, again and again.
TEST_F(KeyWritingTest, LeavesAWholeValueWheneverTheProgramEnds) {
  RedisServer redis;
  const std::vector<Bytes> rows(20'000, Bytes(std::string(40, 'x')));
  KeyWriting writing(key, -1);
  writing.setList(rows);
  ASSERT_TRUE(connectedItem(redis.port())->write(writing).isWritten);
  RespClient client(redis.port());
  for (int round = 0; round < 10; ++round) {
    const pid_t child = ::fork();
    if (child == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGKILL);
      const auto writer = item(redis.port(), {}, SocketCalls::system(), ServerItem::Life::transient);
      if (!writer->connectToServer().ok) ::_exit(1);
      while (writer->write(writing).isWritten) {
      }
      ::_exit(1);
    }
    for (int look = 0; look < 20 + round; ++look)
      ASSERT_EQ(client.command({"LLEN", "k"}), ":20000\r\n");
    ::kill(child, SIGTERM);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    // What the system still delivers for it.
    waitUntil([&] { return client.command({"CLIENT", "LIST"}).find("id=", 20) == std::string::npos; });
    ASSERT_EQ(client.command({"LLEN", "k"}), ":20000\r\n");
  }
}

}  // namespace
}  // namespace tarn::test
