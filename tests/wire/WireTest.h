#pragma once

#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/SplitText.h"
#include "tests/support/AlertRecorder.h"
#include "tests/support/RedisServer.h"
#include "tests/support/ScriptedServer.h"
#include "wire/ServerItem.h"
#include "wire/ServerItemHost.h"
#include "wire/socket/TcpConnect.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace tarn::test {

using Messages = std::vector<std::string>;
using Peer = ScriptedServer::Peer;

inline constexpr std::int64_t noLimit = std::numeric_limits<std::int64_t>::max();

// Whoever is above the servers: keeps what it was asked to show.
class RecordingHost final : public ServerItemHost {
public:
  RecordingHost() { install(this); }
  ~RecordingHost() override { install(nullptr); }

  void reloadServerRow(const std::shared_ptr<ServerItem>&) override { calls.push_back("row"); }
  void refreshServerRow(const std::shared_ptr<ServerItem>&) override { calls.push_back("counts"); }
  void showStatusInTab(const std::shared_ptr<ServerItem>& server) override {
    constexpr std::array names{"NotConnected", "Connected", "DisConnected", "Connecting"};
    calls.push_back(std::string("Status:") + names.at(static_cast<std::size_t>(server->connectionStatus())));
  }
  void bringDatabasesUpToDate(const std::shared_ptr<ServerItem>&, bool connected) override {
    calls.push_back(connected ? "databases" : "no databases");
  }
  void showSelectedDatabase(const std::shared_ptr<ServerItem>& server) override {
    calls.push_back("db" + std::to_string(server->currentDbIdx()));
  }

  Messages calls;
};

// Connections on loopback, the alerts that they raised, and a count of the descriptors that they left open.
class WireTest : public testing::Test {
public:
  ~WireTest() override { NSOperationQueue::mainQueue().drain(); }

  static std::shared_ptr<ServerItem> item(int port, std::string auth = {}, SocketCalls& calls = SocketCalls::system(),
                                          ServerItem::Life life = ServerItem::Life::favourite) {
    auto server = std::make_shared<ServerItem>(life, tcpOpener(calls));
    server->setConnectionName("a");
    server->setServerIp("127.0.0.1");
    server->setServerPort(port);
    server->setAuth(std::move(auth));
    return server;
  }

  static std::shared_ptr<ServerItem> connectedItem(int port, std::string auth = {},
                                                   SocketCalls& calls = SocketCalls::system()) {
    auto server = item(port, std::move(auth), calls);
    const auto outcome = server->connectToServer();
    EXPECT_TRUE(outcome.ok) << outcome.message;
    return server;
  }

  // The messages shown since the last call.
  Messages alerts() {
    NSOperationQueue::mainQueue().drain();
    auto messages = recorder_.messages();
    recorder_.clear();
    return messages;
  }

  static std::size_t openDescriptors() {
    const auto entries = std::filesystem::directory_iterator("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
  }

  static void waitUntil(const std::function<bool()>& done) {
    while (!done())
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }

  static void waitUntilIdle(ServerItem& server) {
    waitUntil([&] { return server.operationQueue().operationCount() == 0; });
  }

  // What the timer does, to its end; what the host was told by then, with a blank behind each. It shows no alert.
  std::string refresh(ServerItem& server) {
    server.infoFromServerMain();
    waitUntilIdle(server);
    EXPECT_EQ(alerts(), Messages{});
    std::string told;
    for (const std::string& call : std::exchange(host.calls, {}))
      told += call + " ";
    return told;
  }

  RecordingHost host;

private:
  AlertRecorder recorder_;
};

// A peer that answers the requests of each connection with the next reply of a list, and then closes.
inline ScriptedServer::Script answering(Messages replies) {
  return [replies = std::move(replies)](Peer& peer, int) {
    for (const std::string& reply : replies) {
      if (peer.readRequest().empty()) return;
      peer.send(reply);
    }
    peer.readRequest();
  };
}

// A peer that answers every request with what `reply` makes of its connection's number.
inline ScriptedServer::Script answeringAll(std::function<std::string(int connection)> reply) {
  return [reply = std::move(reply)](Peer& peer, int connection) {
    while (!peer.readRequest().empty())
      peer.send(reply(connection));
  };
}

// What is sent for these lines, with bars between.
inline std::string requests(std::string_view lines) {
  std::string sent;
  for (const std::string_view line : splitText(lines, "|")) {
    const auto words = splitText(line, " ");
    sent += encodedRequest({words.begin(), words.end()});
  }
  return sent;
}

// What a stand-alone server says when it is asked for the nodes of its cluster.
inline constexpr const char* noCluster = "-ERR This instance has cluster support disabled\r\n";

inline std::string bulk(const std::string& text) {
  return "$" + std::to_string(text.size()) + "\r\n" + text + "\r\n";
}

}  // namespace tarn::test
