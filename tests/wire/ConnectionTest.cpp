#include "tests/support/RespPeer.h"
#include "tests/wire/WireTest.h"
#include "wire/connection/Connection.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <map>

namespace tarn::test {
namespace {

using Status = ConnectionStatus;
using ConnectionTest = WireTest;

ServerAddress address(int port, std::string password = {}) {
  return {.name = "a", .host = "127.0.0.1", .port = port, .password = std::move(password)};
}

// System calls of which a test makes one fail, or waits for one.
class TamperedCalls final : public SocketCalls {
public:
  int connect(int descriptor, const sockaddr* address, socklen_t length) override {
    if (beforeConnect) beforeConnect();
    return fails("connect") ? -1 : SocketCalls::connect(descriptor, address, length);
  }
  int poll(pollfd* descriptor, int milliseconds) override {
    waits.push_back(milliseconds);
    if (waits.size() == 1 && fails("interrupted calls")) return -1;
    return fails("poll") ? (error == 0 ? 0 : -1) : SocketCalls::poll(descriptor, milliseconds);
  }
  int setOption(int descriptor, int level, int option, const void* value, socklen_t length) override {
    const bool isTime = option == SO_SNDTIMEO || option == SO_RCVTIMEO;
    const auto* const time = static_cast<const timeval*>(value);
    options[{level, option}] =
        isTime ? time->tv_sec * 1000000 + time->tv_usec : *static_cast<const std::int64_t*>(value);
    EXPECT_EQ(SocketCalls::setOption(descriptor, level, option, value, length), 0);
    return fails("option") ? -1 : 0;
  }
  ssize_t send(int descriptor, const void* bytes, std::size_t count, int flags) override {
    EXPECT_TRUE(flags & MSG_NOSIGNAL);
    if (fails("send") || (++sends_ % 2 == 0 && fails("interrupted calls"))) return -1;
    return SocketCalls::send(descriptor, bytes, failing.empty() ? count : std::min<std::size_t>(count, 3), flags);
  }
  ssize_t receive(int descriptor, void* bytes, std::size_t count, int flags) override {
    ++receives;
    const bool waits = (flags & MSG_DONTWAIT) == 0;
    if (waits && ((failing == "slow link" && looks_ < 3) || failing == "dead link")) return errno = EAGAIN, -1;
    if (waits && beforeReceive) beforeReceive();
    return SocketCalls::receive(descriptor, bytes, count, beforeReceive ? flags | MSG_DONTWAIT : flags);
  }

  // On a slow link something has left at each look, on a dead one never again.
  std::size_t sendQueue(int descriptor) override {
    if (failing == "slow link") return 1000 - ++looks_;
    return failing == "dead link" ? 1000 : SocketCalls::sendQueue(descriptor);
  }

  std::string failing;
  int error = EINVAL;
  std::function<void()> beforeConnect;
  // Waits in place of the system, which gives its own wait up at once.
  std::function<void()> beforeReceive;
  std::vector<int> waits;
  std::map<std::pair<int, int>, std::int64_t> options;
  std::atomic<int> receives = 0;

private:
  bool fails(const std::string& call) const {
    if (failing == call) errno = error;
    return failing == call;
  }

  int sends_ = 0;
  std::size_t looks_ = 0;
};

TEST_F(ConnectionTest, OpensAuthenticatesAndCloses) {
  RedisServer server({"--requirepass", "s3cret"});
  const std::size_t before = openDescriptors();
  for (const bool isRight : {true, false}) {
    Connection connection(tcpOpener());
    const auto outcome = connection.connect(address(server.port(), isRight ? "s3cret" : "wrong"), 0, isRight ? 3 : 0);
    EXPECT_TRUE(outcome.ok == isRight && outcome.isOpen && !outcome.closed);
    EXPECT_TRUE(isRight || outcome.message.starts_with("WRONGPASS")) << outcome.message;
    EXPECT_TRUE(connection.status() == Status::connected && connection.isAlive());
    EXPECT_EQ(connection.database(), isRight ? 3 : 0);
    EXPECT_EQ(connection.execute(RedisCommand::select, {"1"}).ok, isRight);
    EXPECT_EQ(connection.database(), isRight ? 1 : 0);
    connection.close();
    EXPECT_TRUE(connection.status() == Status::notConnected && !connection.isAlive());
    EXPECT_TRUE(connection.connect(address(server.port(), "s3cret"), connection.epoch()).ok);
    EXPECT_TRUE(connection.status() == Status::connected && connection.database() == 0);
  }
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(ConnectionTest, TellsEachConnectThatFails) {
  RedisServer dead;
  dead.kill();
  ScriptedServer peer(answering({":1\r\n"}));
  struct Case {
    std::string failing;
    ServerAddress to;
    std::string message;
    int error = EINVAL;
    Status status = Status::disConnected;
  };
  const ServerAddress here = address(peer.port());
  const ServerAddress nowhere{.name = "a", .host = "no such host", .port = here.port, .password = {}};
  const std::string unresolved = "Can not get IP address or Port.";
  const std::string refused = "Can not connect to Server(a).";
  const std::vector<Case> cases{
      {"", nowhere, unresolved, 0, Status::notConnected},
      {"", address(6379 - 65536), unresolved, 0, Status::notConnected},
      {"", address(65536), unresolved, 0, Status::notConnected},
      {"", address(dead.port()), refused},
      {"poll", here, refused},
      {"poll", here, "Connect Server(a) timeout.", 0},
      {"connect", here, refused},
      {"connect", here, "Can not reach Server((a)).", EHOSTUNREACH},
  };
  const std::size_t before = openDescriptors();
  for (const Case& expected : cases) {
    SCOPED_TRACE(expected.failing + ": " + expected.message);
    TamperedCalls calls;
    calls.failing = expected.failing;
    calls.error = expected.error;
    Connection connection(tcpOpener(calls));
    const auto outcome = connection.connect(expected.to, 0);
    EXPECT_FALSE(outcome.ok || outcome.isOpen || outcome.closed);
    EXPECT_EQ(outcome.message, expected.message);
    EXPECT_EQ(connection.status(), expected.status);
    EXPECT_FALSE(connection.isAlive());
    // The other end, which may be ours too, closes when it notices.
    waitUntil([&] { return openDescriptors() == before; });
    calls.failing.clear();
    EXPECT_TRUE(connection.connect(here, 0).ok);
  }
}

// Four probes of keepalive, then five seconds each way; a failure of any of them only goes to the log.
TEST_F(ConnectionTest, TunesTheSocketAndGoesOnWithoutTheTuning) {
  TamperedCalls calls;
  ScriptedServer peer(answering({}));
  Connection connection(tcpOpener(calls));
  calls.failing = "option";
  EXPECT_TRUE(connection.connect(address(peer.port()), 0).ok);
  const std::map<std::pair<int, int>, std::int64_t> expected{
      {{SOL_SOCKET, SO_KEEPALIVE}, 1}, {{IPPROTO_TCP, TCP_KEEPIDLE}, 15},    {{IPPROTO_TCP, TCP_KEEPINTVL}, 5},
      {{IPPROTO_TCP, TCP_KEEPCNT}, 3}, {{SOL_SOCKET, SO_SNDTIMEO}, 5000000}, {{SOL_SOCKET, SO_RCVTIMEO}, 5000000},
  };
  EXPECT_EQ(calls.options, expected);
  ASSERT_EQ(calls.waits.size(), 1U);
  EXPECT_TRUE(calls.waits[0] > 0 && calls.waits[0] <= 5000) << calls.waits[0];
}

// Closed while it waits for the connect, while it waits for the reply to AUTH, and when there is a socket, but no
// connect yet that shutting it down could end: nobody waits for the five seconds.
TEST_F(ConnectionTest, ClosedWhileItConnectsStaysClosed) {
  // Its backlog is full: the next connect is neither taken nor refused.
  const LoopbackPort blackHole;
  ASSERT_EQ(::listen(blackHole.descriptor(), 0), 0);
  const RespClient filler(blackHole.number());
  std::atomic<int> asked = 0;
  ScriptedServer silent([&](Peer& client, int) {
    client.readRequest();
    ++asked;
    client.readRequest();
  });
  TamperedCalls calls;
  Connection connection(tcpOpener(calls));
  const std::size_t before = openDescriptors();
  const auto closeDuring = [&](const ServerAddress& to, const std::function<bool()>& underWay) {
    Connection::Outcome outcome;
    std::thread connecting([&, began = connection.epoch()] { outcome = connection.connect(to, began); });
    waitUntil(underWay);
    connection.close();
    connecting.join();
    EXPECT_TRUE(!outcome.ok && outcome.closed);
    EXPECT_EQ(outcome.message, "Can not connect to Server(a).");
    EXPECT_EQ(connection.status(), Status::notConnected);
  };
  closeDuring(address(blackHole.number()), [&] { return connection.status() == Status::connecting; });
  closeDuring(address(silent.port(), "secret"), [&] { return asked == 1; });
  calls.waits.clear();
  calls.beforeConnect = [&] { connection.close(); };
  EXPECT_TRUE(connection.connect(address(blackHole.number()), connection.epoch()).closed);
  EXPECT_TRUE(connection.connect(address(silent.port()), connection.epoch() - 1).closed);
  EXPECT_EQ(calls.waits, std::vector<int>());
  EXPECT_EQ(connection.status(), Status::notConnected);
  waitUntil([&] { return openDescriptors() == before; });
}

TEST_F(ConnectionTest, GoesOnAfterAnInterruptionOrAShortSendAndTellsAFailedOne) {
  TamperedCalls calls;
  calls.failing = "interrupted calls";
  calls.error = EINTR;
  ScriptedServer peer(answering({"+OK\r\n", "+OK\r\n"}));
  Connection connection(tcpOpener(calls));
  ASSERT_TRUE(connection.connect(address(peer.port()), 0).ok);
  EXPECT_TRUE(connection.execute(RedisCommand::get, {"key"}).ok);
  EXPECT_EQ(peer.received().front(), encodedRequest({"get", "key"}));
  calls.failing = "slow link";
  EXPECT_TRUE(connection.execute(RedisCommand::get, {"key"}).ok);
  calls.failing = "send";
  calls.error = EPIPE;
  EXPECT_EQ(connection.execute(RedisCommand::get, {"key"}).message, "Can not connect to server");
  EXPECT_EQ(connection.status(), Status::connected);
  EXPECT_FALSE(connection.isAlive());
}

// What a user gives up, or the server seems to have lost, mustn't reach it behind what is sent anew.
TEST_F(ConnectionTest, TakesBackWhatHasNotLeftYetWhenItCloses) {
  constexpr std::size_t size = 1'000'000;
  for (const bool isDead : {false, true}) {
    SCOPED_TRACE(isDead);
    std::atomic<bool> reads = false;
    std::atomic<bool> isRead = false;
    ScriptedServer peer([&](Peer& client, int) {
      waitUntil([&] { return reads.load(); });
      client.readRequest();
      isRead = true;
    });
    TamperedCalls calls;
    Connection connection(tcpOpener(calls));
    ASSERT_TRUE(connection.connect(address(peer.port()), 0).ok);
    if (isDead) calls.failing = "dead link";
    std::thread writing([&] {
      const auto result = connection.execute(RedisCommand::set, {"key", std::string(size, 'x')});
      EXPECT_EQ(result.message, "Can not connect to server");
    });
    // A look whether the server is there, and the wait for its reply.
    waitUntil([&] { return calls.receives >= 2; });
    if (!isDead) connection.close();
    writing.join();
    reads = true;
    waitUntil([&] { return isRead.load(); });
    EXPECT_LT(peer.received().front().size(), size);
  }
}

// Bytes that wait, and a look whether the peer is there, which leaves them; then a reply that the system gives up to
// wait for, or garbage: the lock is free afterwards, and the next connect works. Then the peer closes.
TEST_F(ConnectionTest, NoticesAReplyThatEndsTooEarlyAndAPeerThatCloses) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"$12\r\nabc", "Can not connect to server"},
      {"*2\r\n:1\r\n", "Get Data from server error(788)"},
      {"HTTP/1.1 400 Bad\xE9\r\n", "Server reply Error, unrecognized reply."},
  };
  for (const auto& [reply, message] : cases) {
    SCOPED_TRACE(reply);
    TamperedCalls calls;
    std::atomic<bool> sent = false;
    ScriptedServer peer([&, &reply = reply](Peer& client, int connection) {
      client.send(connection == 0 ? reply : "+PONG\r\n");
      sent = true;
      client.readRequest();
    });
    Connection connection(tcpOpener(calls));
    ASSERT_TRUE(connection.connect(address(peer.port()), 0).ok);
    calls.beforeReceive = [&] { waitUntil([&] { return sent.load(); }); };
    EXPECT_TRUE(connection.isAlive() && connection.isAlive());
    EXPECT_EQ(connection.execute(RedisCommand::get, {"k"}).message, message);
    EXPECT_EQ(connection.status(), Status::disConnected);
    EXPECT_FALSE(connection.isAlive());
    calls.beforeReceive = nullptr;
    ASSERT_TRUE(connection.connect(address(peer.port()), 0).ok);
    EXPECT_EQ(connection.execute(RedisCommand::ttl, {"k"}).message, "PONG");
    waitUntil([&] { return !connection.isAlive(); });
    const auto result = connection.execute(RedisCommand::get, {"k"});
    EXPECT_EQ(result.message, "Can not connect to server, Please Reconnect to the server.");
    EXPECT_EQ(connection.status(), Status::disConnected);
    EXPECT_EQ(peer.received().back(), encodedRequest({"ttl", "k"}));
  }
}

// Two blocks of the queue and the main queue share one connection: each gets its own reply. Then loads and scans run
// while the connection is closed under them, after each number of calls that they make, and opened again.
TEST_F(ConnectionTest, IsSharedByThreadsAndClosesCleanlyUnderThem) {
  RedisServer server({"--enable-debug-command", "yes"});
  server.command({"DEBUG", "POPULATE", "20000"});
  server.command({"SETRANGE", "big", "3000000", "x"});
  const std::size_t before = openDescriptors();
  TamperedCalls calls;
  const auto client = connectedItem(server.port(), {}, calls);
  NSOperationQueue& queue = client->operationQueue();
  const auto readsItsOwn = [client](const Bytes& name) {
    EXPECT_TRUE(client->execute(RedisCommand::set, {name.view(), name.view()}).ok);
    for (int i = 0; i < 300; ++i)
      EXPECT_EQ(client->getValue(name).second, name);
  };
  queue.addOperationWithBlock([&] { readsItsOwn("a"_bytes); });
  queue.addOperationWithBlock([&] { readsItsOwn("b"_bytes); });
  readsItsOwn("c"_bytes);
  waitUntilIdle(*client);
  client->closeConnection();
  for (int round = 0; round < 60; ++round) {
    ASSERT_TRUE(client->connectToServer().ok);
    calls.receives = 0;
    queue.addOperationWithBlock([client] {
      client->loadDatabases();
      client->scanKeys("*"_bytes, 20000, false);
      client->getValue("big"_bytes);
    });
    client->infoFromServerMain();
    waitUntil([&] { return calls.receives >= round || queue.operationCount() == 0; });
    if (round % 7 == 0) alerts();
    client->closeConnection();
    EXPECT_TRUE(client->dbs()->empty());
    EXPECT_FALSE(client->isAlive());
    waitUntilIdle(*client);
    EXPECT_TRUE(client->dbs()->empty());
  }
  alerts();
  EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
}  // namespace tarn::test
