#pragma once

#include "tests/support/LoopbackPort.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace tarn::test {

// A peer on a loopback port that does what no real server does: cut replies, malformed bytes, stalls, early closes. It
// also records every byte that it receives. Each accepted connection runs the script on a thread of its own. The
// destructor shuts all connections down and waits for their scripts: a script that stalls should do so in readRequest.
class ScriptedServer final {
public:
  // One accepted connection, as the script sees it. Belongs to the script's thread.
  class Peer final {
  public:
    explicit Peer(int descriptor) : descriptor_(descriptor) {}
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    ~Peer();

    // One whole request in multi-bulk form, as its words; empty when the client closed.
    std::vector<std::string> readRequest();
    // Sends all of it, or nothing more if the client closed.
    void send(std::string_view bytes);
    // Ends the stream in order; what has arrived unread is recorded first.
    void close();

  private:
    friend class ScriptedServer;
    // Both answer with nothing when the client closed.
    std::string readLine();
    std::string readExactly(std::size_t size);
    bool receiveMore(int flags);
    // Any thread: wakes the script.
    void shutDown();
    std::string copyOfReceived() const;

    // The lock guards what other threads may reach: the descriptor and the bytes as they grow.
    mutable std::mutex mutex_;
    int descriptor_;
    std::string received_;
    std::size_t consumed_ = 0;
  };

  // The script runs once a connection; the connection closes when it returns. `connection` counts from 0.
  using Script = std::function<void(Peer& peer, int connection)>;

  explicit ScriptedServer(Script script);
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;
  ~ScriptedServer();

  int port() const { return port_.number(); }
  int connections() const { return connections_; }

  // All bytes received so far, connection by connection in the order accepted.
  std::vector<std::string> received() const;

private:
  struct Connection;

  void acceptAll();

  Script script_;
  LoopbackPort port_;
  std::atomic<int> connections_ = 0;
  mutable std::mutex mutex_;
  std::vector<std::unique_ptr<Connection>> accepted_;
  std::thread acceptor_;
};

}  // namespace tarn::test
