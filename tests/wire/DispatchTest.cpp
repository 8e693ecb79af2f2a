#include "tests/wire/WireTest.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <mutex>

namespace tarn::test {
namespace {

using Status = ConnectionStatus;

using Dispatch = WireTest;

// Whatever comes back in place of a reply, the lock is free afterwards and the next connect works.
TEST_F(Dispatch, RecoversFromAReplyCutAtAnyByteAndFromGarbage) {
  const std::string reply = "*3\r\n$3\r\nabc\r\n*1\r\n:1\r\n%1\r\n+a\r\n_\r\n";
  std::vector<std::string> broken;
  for (std::size_t cut = 0; cut < reply.size(); ++cut)
    broken.push_back(reply.substr(0, cut));
  broken.insert(broken.end(), {"\xFF\xFE", "HTTP/1.1 400 Bad Request\xE9\r\n", "$99999999999\r\n", "*-\r\n",
                               "*2147483648\r\n", "$4294967296\r\nabc"});
  ScriptedServer peer([&](ScriptedServer::Peer& client, int connection) {
    client.readRequest();
    client.send(connection % 2 == 0 ? broken[static_cast<std::size_t>(connection / 2)] : "+PONG\r\n");
    if (connection % 2 != 0) client.readRequest();
  });
  const std::size_t before = openDescriptors();
  const auto client = item(peer.port());
  for (const std::string& cut : broken) {
    SCOPED_TRACE(cut);
    ASSERT_TRUE(client->connectToServer().ok);
    EXPECT_FALSE(client->execute(RedisCommand::get, {"k"}).ok);
    EXPECT_EQ(client->connectionStatus(), Status::disConnected);
    EXPECT_FALSE(client->isAlive());
    ASSERT_TRUE(client->connectToServer().ok);
    EXPECT_EQ(client->execute(RedisCommand::get, {"k"}).message, "PONG");
    client->closeConnection();
  }
  waitUntil([&] { return openDescriptors() == before; });
}

TEST_F(Dispatch, NeverSendsOnAConnectionThatIsGoneAndSaysSo) {
  ScriptedServer peer([](ScriptedServer::Peer&, int) {});
  const auto closed = connectedItem(peer.port());
  waitUntil([&] { return !closed->isAlive(); });
  for (const auto& client : {item(1), closed}) {
    host_.calls.clear();
    EXPECT_EQ(client->keyType("k"_bytes), std::pair(false, std::string()));
    EXPECT_EQ(alerts(), Messages{"Can not connect to server, Please Reconnect to the server."});
    EXPECT_EQ(host_.calls, (Messages{"row", "Status:DisConnected"}));
    EXPECT_EQ(client->connectionStatus(), Status::disConnected);
  }
  EXPECT_EQ(peer.received().front(), "");
}

TEST_F(Dispatch, ContinuesShortSendsAndTellsAFailedOne) {
  class Sending final : public SocketCalls {
  public:
    ssize_t send(int descriptor, const void* bytes, std::size_t count, int flags) override {
      EXPECT_TRUE(flags & MSG_NOSIGNAL);
      if (++sends % 2 == 0) {
        errno = EINTR;
        return -1;
      }
      if (failing) {
        errno = EPIPE;
        return -1;
      }
      return SocketCalls::send(descriptor, bytes, std::min<std::size_t>(count, 3), flags);
    }
    bool failing = false;
    int sends = 0;
  } calls;
  ScriptedServer peer(answering({"+OK\r\n"}));
  const auto client = itemWith(calls, peer.port());
  ASSERT_TRUE(client->connectToServer().ok);
  EXPECT_TRUE(client->execute(RedisCommand::get, {"key"}).ok);
  EXPECT_EQ(peer.received().front(), "*2\r\n$3\r\nget\r\n$3\r\nkey\r\n");
  calls.failing = true;
  EXPECT_EQ(client->execute(RedisCommand::get, {"key"}).message, "Can not connect to server");
  EXPECT_EQ(client->connectionStatus(), Status::connected);
  EXPECT_FALSE(client->isAlive());
  client->execute(RedisCommand::get, {"key"});
  EXPECT_EQ(client->connectionStatus(), Status::disConnected);
}

TEST_F(Dispatch, FollowsTheRedirectsOfARealCluster) {
  RedisCluster cluster({"--requirepass", "pw", "--masterauth", "pw"});
  const auto client = connectedItem(cluster.master(0).port(), "pw");
  const std::size_t before = openDescriptors();
  for (const std::string key : {"a", "b", "c", "d", "e", "f", "g", "h"}) {
    EXPECT_TRUE(client->setValue(Bytes(key), Bytes("value of " + key), -1));
    EXPECT_EQ(client->getValue(Bytes(key)), std::pair(true, Bytes("value of " + key)));
  }
  EXPECT_TRUE(client->isAlive());
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_EQ(alerts(), Messages{});
}

TEST_F(Dispatch, EndsRedirectsThatLeadNowhere) {
  RedisServer dead;
  dead.kill();
  std::mutex mutex;
  std::string error;
  const auto answerNext = [&](const std::string& next) {
    const std::lock_guard lock(mutex);
    error = next;
  };
  ScriptedServer peer([&](ScriptedServer::Peer& client, int) {
    while (!client.readRequest().empty()) {
      const std::lock_guard lock(mutex);
      client.send("-" + error + "\r\n");
    }
  });
  const std::size_t before = openDescriptors();
  const auto client = connectedItem(peer.port());

  const auto expectFailed = [&](const std::string& message) {
    const auto result = client->execute(RedisCommand::get, {"k"});
    EXPECT_FALSE(result.ok);
    EXPECT_FALSE(result.type);
    EXPECT_EQ(result.message, message);
    EXPECT_EQ(client->connectionStatus(), Status::connected);
    EXPECT_TRUE(client->isAlive());
  };
  const std::string toItself = "ASK 1 127.0.0.1:" + std::to_string(peer.port());
  answerNext(toItself);
  expectFailed("The cluster redirects without end: " + toItself);
  EXPECT_EQ(peer.connections(), 1 + 16);

  answerNext("MOVED 1 h:x");
  expectFailed("Can not read the redirect of the cluster: MOVED 1 h:x");
  const std::string gone = "127.0.0.1:" + std::to_string(dead.port());
  answerNext("MOVED 1 " + gone);
  expectFailed("Can not connect to cluster node server(" + gone + ")");

  answerNext("ERR key MOVED 1 127.0.0.1:1");
  EXPECT_EQ(client->execute(RedisCommand::get, {"k"}).type, ReplyType::REDIS_REPLY_ERROR);
  client->closeConnection();
  waitUntil([&] { return openDescriptors() == before; });
}

// Two blocks of the queue and the main queue share one connection: each gets its own reply.
TEST_F(Dispatch, KeepsEachReplyWithItsRequest) {
  RedisServer server;
  const auto client = connectedItem(server.port());
  std::vector<std::thread> threads;
  for (int number = 0; number < 3; ++number) {
    threads.emplace_back([&client, number] {
      const Bytes name(std::to_string(number));
      EXPECT_TRUE(client->setValue(name, name, -1));
      for (int i = 0; i < 300; ++i)
        EXPECT_EQ(client->getValue(name).second, name);
    });
  }
  for (std::thread& thread : threads)
    thread.join();
}

// Loads and scans run while the connection is closed under them and opened again.
TEST_F(Dispatch, ClosesCleanlyUnderRunningLoads) {
  RedisServer server({"--enable-debug-command", "yes"});
  server.command({"DEBUG", "POPULATE", "20000"});
  server.command({"EVAL", "for i=1,20000 do redis.call('rpush','list','item '..i) end", "0"});
  server.command({"SETRANGE", "big", "3000000", "x"});
  const std::size_t before = openDescriptors();
  const auto client = item(server.port());
  for (int round = 0; round < 300; ++round) {
    ASSERT_TRUE(client->connectToServer().ok);
    NSOperationQueue& queue = client->operationQueue();
    queue.addOperationWithBlock([client] { client->loadDatabases(); });
    queue.addOperationWithBlock([client] { client->lrangeAll("list"_bytes); });
    queue.addOperationWithBlock([client] { client->scanKeys("*"_bytes, 20000, false); });
    queue.addOperationWithBlock([client] { client->getValue("big"_bytes); });
    client->infoFromServerMain();
    std::this_thread::sleep_for(std::chrono::microseconds(37 * (round % 100)));
    if (round % 7 == 0) alerts();
    client->closeConnection();
    EXPECT_TRUE(client->dbs()->empty());
    EXPECT_FALSE(client->isAlive());
    waitUntilIdle(*client);
    EXPECT_TRUE(client->dbs()->empty());
  }
  alerts();
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_TRUE(client->connectToServer().ok);
  EXPECT_EQ(client->lrangeAll("list"_bytes).size(), 20000U);
}

}  // namespace
}  // namespace tarn::test
