#include "platform/foundation/NSRunLoop.h"
#include "tests/support/LoopbackPort.h"
#include "tests/wire/WireTest.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <map>
#include <thread>

namespace tarn::test {
namespace {

using Status = ConnectionStatus;

class Connecting : public WireTest {
protected:
  struct Failure {
    std::string message;
    Status status;
    // What the failure's line on standard error begins with.
    std::string log = {};
  };

  // The connect fails as told and leaves no more open than `before`: counted before the first of several connects,
  // since a peer of ours may take one late, when it has failed already.
  static void expectFailure(ServerItem& server, const Failure& expected, std::size_t before = openDescriptors()) {
    testing::internal::CaptureStderr();
    const auto outcome = server.connectToServer();
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(expected.log.empty() ? log.empty() : log.starts_with(expected.log + ": ")) << log;
    EXPECT_FALSE(outcome.ok);
    EXPECT_FALSE(outcome.closed);
    EXPECT_EQ(outcome.message, expected.message);
    EXPECT_EQ(server.connectionStatus(), expected.status);
    EXPECT_FALSE(server.isAlive());
    // The other end, which may be ours too, closes when it notices.
    waitUntil([&] { return openDescriptors() == before; });
  }
};

// A listener whose backlog is full: the next connect is neither taken nor refused.
class FullBacklog final {
public:
  FullBacklog() {
    EXPECT_EQ(::listen(port_.descriptor(), 0), 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<in_port_t>(port()));
    for (int& filler : fillers_) {
      filler = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
      ::connect(filler, reinterpret_cast<sockaddr*>(&address), sizeof address);
    }
  }
  ~FullBacklog() {
    for (const int filler : fillers_)
      ::close(filler);
  }
  int port() const { return port_.number(); }

private:
  LoopbackPort port_;
  std::array<int, 4> fillers_{};
};

TEST_F(Connecting, OpensAuthenticatesAndCloses) {
  RedisServer server({"--requirepass", "s3cret"});
  const std::size_t before = openDescriptors();
  const auto good = item(server.port(), "s3cret");
  EXPECT_EQ(good->connectionStatus(), Status::notConnected);
  EXPECT_FALSE(good->isAlive());
  testing::internal::CaptureStdout();
  const auto outcome = good->connectToServer();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "IP address:127.0.0.1 port:" + std::to_string(server.port()) + "\nconnecting\nconnected\nBLOCK setted\n");
  EXPECT_TRUE(outcome.ok);
  EXPECT_EQ(good->connectionStatus(), Status::connected);
  EXPECT_EQ(good->keyType("k"_bytes), std::pair(true, std::string("none")));

  const auto bad = item(server.port(), "wrong");
  const auto refused = bad->connectToServer();
  EXPECT_FALSE(refused.ok);
  EXPECT_FALSE(refused.closed);
  EXPECT_TRUE(refused.message.starts_with("WRONGPASS")) << refused.message;
  EXPECT_EQ(bad->connectionStatus(), Status::connected);
  EXPECT_TRUE(bad->isAlive());

  for (const auto& server : {good, bad}) {
    server->closeConnection();
    EXPECT_EQ(server->connectionStatus(), Status::notConnected);
    EXPECT_FALSE(server->isAlive());
  }
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_EQ(alerts(), Messages{});
}

// Four probes of keepalive, then five seconds each way; a failure of any of them only goes to the log.
TEST_F(Connecting, TunesTheSocketAndGoesOnWithoutTheTuning) {
  class Tuning final : public SocketCalls {
  public:
    int setOption(int descriptor, int level, int option, const void* value, socklen_t length) override {
      if (option == SO_SNDTIMEO || option == SO_RCVTIMEO) {
        seen[{level, option}] = static_cast<const timeval*>(value)->tv_sec;
      } else {
        seen[{level, option}] = *static_cast<const std::int64_t*>(value);
      }
      EXPECT_EQ(SocketCalls::setOption(descriptor, level, option, value, length), 0);
      errno = EINVAL;
      return -1;
    }
    std::map<std::pair<int, int>, std::int64_t> seen;
  } calls;
  ScriptedServer peer(answering({}));
  const auto server = itemWith(calls, peer.port());
  EXPECT_TRUE(server->connectToServer().ok);
  const std::map<std::pair<int, int>, std::int64_t> expected{
      {{SOL_SOCKET, SO_KEEPALIVE}, 1}, {{IPPROTO_TCP, TCP_KEEPIDLE}, 15}, {{IPPROTO_TCP, TCP_KEEPINTVL}, 5},
      {{IPPROTO_TCP, TCP_KEEPCNT}, 3}, {{SOL_SOCKET, SO_SNDTIMEO}, 5},    {{SOL_SOCKET, SO_RCVTIMEO}, 5},
  };
  EXPECT_EQ(calls.seen, expected);
  server->closeConnection();
}

TEST_F(Connecting, TellsAnAddressThatCannotBeResolved) {
  const std::vector<std::pair<std::string, int>> cases{
      {"", 6379}, {"no such host", 6379}, {"127.0.0.1", -1}, {"127.0.0.1", 6379 - 65536}, {"127.0.0.1", 65536 + 6379}};
  for (const auto& [host, port] : cases) {
    const auto server = item(port);
    server->setServerIp(host);
    expectFailure(*server, {"Can not get IP address or Port.", Status::notConnected});
  }
}

TEST_F(Connecting, TellsARefusalAndConnectsOnceTheServerIsThere) {
  RedisServer server;
  server.kill();
  const auto client = item(server.port());
  expectFailure(*client, {"Can not connect to Server(a).", Status::disConnected, "not connect"});
  server.start();
  EXPECT_TRUE(client->connectToServer().ok);
  client->closeConnection();
}

// The failures that no peer can provoke, one after the other, on a listener that works.
TEST_F(Connecting, TellsEachSystemCallThatFails) {
  class Failing final : public SocketCalls {
  public:
    int numericName(const sockaddr* address, socklen_t length, std::string& host, std::string& port) override {
      return fails == "name" ? EAI_FAIL : SocketCalls::numericName(address, length, host, port);
    }
    int socket(int family, int type, int protocol) override {
      return fails == "socket" ? failure() : SocketCalls::socket(family, type, protocol);
    }
    int getFlags(int descriptor) override {
      ++flagReads;
      return fails == "get" + std::to_string(flagReads) ? failure() : SocketCalls::getFlags(descriptor);
    }
    int setFlags(int descriptor, int flags) override {
      return fails == "set" + std::to_string(flagReads) ? failure() : SocketCalls::setFlags(descriptor, flags);
    }
    int connect(int descriptor, const sockaddr* address, socklen_t length) override {
      if (fails != "connect") return SocketCalls::connect(descriptor, address, length);
      errno = error;
      return -1;
    }
    int poll(pollfd* descriptor, int milliseconds) override {
      return fails == "poll" ? failure() : SocketCalls::poll(descriptor, milliseconds);
    }
    std::string fails;
    int error = EINVAL;
    int flagReads = 0;

  private:
    int failure() const {
      errno = EINVAL;
      return -1;
    }
  } calls;

  ScriptedServer peer(answering({":1\r\n"}));
  const auto server = itemWith(calls, peer.port());
  const std::vector<std::pair<std::string, Failure>> cases{
      {"name", {"Not Found IP address for server(a).", Status::disConnected}},
      {"socket", {"Can not create socket.", Status::disConnected, "Failure: creating socket"}},
      {"get1", {"Can not set socket options.", Status::disConnected, "flags get error"}},
      {"set1", {"Can not set socket options.", Status::disConnected, "flags set error"}},
      {"poll", {"Can not connect to Server(a).", Status::disConnected, "not connect"}},
      {"connect", {"Can not connect to Server(a).", Status::disConnected, "not connect"}},
      {"get2", {"Can not set socket options.", Status::connected, "flags get error"}},
      {"set2", {"Can not set socket options.", Status::connected, "flags set error"}},
  };
  const std::size_t before = openDescriptors();
  for (const auto& [call, expected] : cases) {
    SCOPED_TRACE(call);
    calls.fails = call;
    calls.flagReads = 0;
    expectFailure(*server, expected, before);
  }
  calls.fails = "connect";
  calls.error = EHOSTUNREACH;
  expectFailure(*server, {"Can not reach Server((a)).", Status::disConnected, "host can not reach"}, before);
  server->setConnectionName("");
  expectFailure(*server, {"Can not reach Server().", Status::disConnected, "host can not reach"}, before);

  calls.fails.clear();
  EXPECT_TRUE(server->connectToServer().ok);
  EXPECT_TRUE(server->deleteKey("k"_bytes));
  server->closeConnection();
}

TEST_F(Connecting, TellsThatTheProcessHasNoDescriptorLeft) {
  const auto server = item(1);
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit none{3, limit.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  const auto outcome = server->connectToServer();
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
  EXPECT_EQ(outcome.message, "Can not create socket.");
  EXPECT_EQ(server->connectionStatus(), Status::disConnected);
}

TEST_F(Connecting, TellsThatThereIsNoRoute) {
  if (::geteuid() != 0) GTEST_SKIP() << "A network namespace with an unreachable route takes root.";
  const auto server = item(6379);
  server->setServerIp("10.9.8.7");
  bool ready = false;
  // A namespace belongs to the thread that made it, and goes with it.
  std::thread([&] {
    ready =
        ::unshare(CLONE_NEWNET) == 0 && std::system("ip link set lo up && ip route add unreachable 10.9.8.7/32") == 0;
    if (ready) expectFailure(*server, {"Can not reach Server((a)).", Status::disConnected, "host can not reach"});
  }).join();
  if (!ready) GTEST_SKIP() << "No network namespace can be set up here.";
}

TEST_F(Connecting, NoticesAPeerThatClosesAndLeavesWaitingBytesAlone) {
  std::atomic<bool> close = false;
  ScriptedServer peer([&](ScriptedServer::Peer& client, int) {
    client.send(":5\r\n");
    waitUntil([&] { return close.load(); });
  });
  const auto server = connectedItem(peer.port());
  for (int i = 0; i < 3; ++i)
    EXPECT_TRUE(server->isAlive());
  EXPECT_EQ(server->keyTtl("k"_bytes).second, "5");
  close = true;
  waitUntil([&] { return !server->isAlive(); });
}

TEST_F(Connecting, ClosedWhileItConnectsStaysClosed) {
  const auto closeOnce = [](const std::shared_ptr<ServerItem>& server, const std::function<bool()>& underWay) {
    ServerItem::Outcome outcome;
    std::thread connecting([&] { outcome = server->connectToServer(); });
    waitUntil(underWay);
    server->closeConnection();
    connecting.join();
    EXPECT_FALSE(outcome.ok);
    EXPECT_TRUE(outcome.closed);
    EXPECT_EQ(server->connectionStatus(), Status::notConnected);
  };
  const std::size_t before = openDescriptors();
  {
    const FullBacklog blackHole;
    const auto server = item(blackHole.port());
    closeOnce(server, [&] { return server->connectionStatus() == Status::connecting; });

    std::atomic<bool> asked = false;
    ScriptedServer silent([&](ScriptedServer::Peer& client, int) {
      client.readRequest();
      asked = true;
      client.readRequest();
    });
    closeOnce(item(silent.port(), "secret"), [&] { return asked.load(); });
  }
  EXPECT_EQ(openDescriptors(), before);
}

// Closed when there is a socket, but no connect yet that shutting it down could end: nobody waits for the five seconds.
TEST_F(Connecting, ClosedRightBeforeItConnectsDoesNotWait) {
  class Closing final : public SocketCalls {
  public:
    int connect(int descriptor, const sockaddr* address, socklen_t length) override {
      server->closeConnection();
      return SocketCalls::connect(descriptor, address, length);
    }
    int poll(pollfd* descriptor, int milliseconds) override {
      ++waits;
      return SocketCalls::poll(descriptor, milliseconds);
    }
    ServerItem* server = nullptr;
    int waits = 0;
  } calls;
  const std::size_t before = openDescriptors();
  {
    FullBacklog blackHole;
    const auto server = itemWith(calls, blackHole.port());
    calls.server = server.get();
    EXPECT_TRUE(server->connectToServer().closed);
    EXPECT_EQ(calls.waits, 0);
    EXPECT_EQ(server->connectionStatus(), Status::notConnected);
  }
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(Connecting, RefreshesEveryThreeSecondsUntilItIsClosed) {
  ScriptedServer peer([](ScriptedServer::Peer& client, int) {
    while (!client.readRequest().empty())
      client.send("-ERR no\r\n");
  });
  const auto server = connectedItem(peer.port());
  auto& loop = NSRunLoop::mainRunLoop();
  EXPECT_FALSE(loop.nextFireDate());
  const auto before = NSRunLoop::Clock::now();
  NSOperationQueue::mainQueue().drain();
  ASSERT_TRUE(loop.nextFireDate());
  EXPECT_GE(*loop.nextFireDate(), before + std::chrono::seconds(3));
  EXPECT_LE(*loop.nextFireDate(), NSRunLoop::Clock::now() + std::chrono::seconds(3));
  // In place of the one that runs, not beside it.
  server->startLivenessTimer();
  server->infoFromServerMain();
  waitUntilIdle(*server);
  EXPECT_EQ(peer.received().front(), "*2\r\n$7\r\ncluster\r\n$5\r\nnodes\r\n*1\r\n$4\r\ninfo\r\n");
  server->closeConnection();
  EXPECT_FALSE(loop.nextFireDate());

  // A timer that was asked for before the close doesn't come after it.
  EXPECT_TRUE(server->connectToServer().ok);
  server->closeConnection();
  NSOperationQueue::mainQueue().drain();
  EXPECT_FALSE(loop.nextFireDate());

  // Nor does it stay when the server goes.
  connectedItem(peer.port());
  NSOperationQueue::mainQueue().drain();
  connectedItem(peer.port())->startLivenessTimer();
  EXPECT_FALSE(loop.nextFireDate());

  const auto transient = std::make_shared<ServerItem>(ServerItem::Life::transient);
  transient->setServerIp("127.0.0.1");
  transient->setServerPort(peer.port());
  EXPECT_TRUE(transient->connectToServer().ok);
  NSOperationQueue::mainQueue().drain();
  EXPECT_FALSE(loop.nextFireDate());
}

// The waits of five seconds, side by side: at each place of a reply, before a connect is taken, and while sending; and
// a reply that takes longer than that, but never pauses for so long.
TEST_F(Connecting, LosesPatienceAfterFiveSecondsWithoutAByte) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"", "Can not connect to server"},
      {"$12", "Can not connect to server(738)"},
      {"$12\r\nabc", "Can not connect to server"},
      {"*2\r\n:1\r\n", "Get Data from server error(788)"},
  };
  std::vector<std::thread> threads;
  std::vector<std::unique_ptr<ScriptedServer>> peers;
  const auto exchange = [&](ScriptedServer::Script script, std::function<void(ServerItem&)> check) {
    peers.push_back(std::make_unique<ScriptedServer>(std::move(script)));
    threads.emplace_back([port = peers.back()->port(), check = std::move(check)] { check(*connectedItem(port)); });
  };
  for (const auto& [cut, message] : cases) {
    exchange(answering({cut}), [&message = message](ServerItem& server) {
      EXPECT_EQ(server.execute(RedisCommand::get, {"k"}).message, message);
      EXPECT_EQ(server.connectionStatus(), Status::disConnected);
    });
  }
  const auto dribble = [](ScriptedServer::Peer& peer, int) {
    peer.readRequest();
    for (const char byte : std::string("$2\r\nok\r\n")) {
      peer.send({&byte, 1});
      std::this_thread::sleep_for(std::chrono::milliseconds(850));
    }
  };
  exchange(dribble, [](ServerItem& server) { EXPECT_EQ(server.getValue("k"_bytes), std::pair(true, "ok"_bytes)); });
  threads.emplace_back([] {
    const FullBacklog blackHole;
    const auto server = item(blackHole.port());
    EXPECT_EQ(server->connectToServer().message, "Connect Server(a) timeout.");
    EXPECT_EQ(server->connectionStatus(), Status::disConnected);
  });
  for (std::thread& thread : threads)
    thread.join();
}

}  // namespace
}  // namespace tarn::test
