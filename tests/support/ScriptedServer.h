#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace tarn::test {

// A peer on a loopback port that does what no real server does: cut replies, malformed bytes, stalls, early closes. It
// also records every byte that it receives. Each accepted connection runs the script on a thread of its own.
class ScriptedServer final {
public:
  // One accepted connection, as the script sees it.
  class Peer final {
  public:
    explicit Peer(int descriptor) : descriptor_(descriptor) {}

    // One whole request in multi-bulk form, as its words; empty when the client closed.
    std::vector<std::string> readRequest();
    void send(std::string_view bytes);
    void close();

    const std::string& received() const { return received_; }

  private:
    friend class ScriptedServer;
    std::string readLine();
    std::string readExactly(std::size_t size);

    int descriptor_;
    std::string received_;
  };

  // The script runs once a connection; the connection closes when it returns. `connection` counts from 0.
  using Script = std::function<void(Peer& peer, int connection)>;

  explicit ScriptedServer(Script script);
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;
  ~ScriptedServer();

  int port() const { return port_; }
  int connections() const { return connections_; }

  // All bytes received so far, connection by connection in the order accepted.
  std::vector<std::string> received() const;

private:
  struct Connection;

  Script script_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<int> connections_ = 0;
  mutable std::mutex mutex_;
  std::vector<std::shared_ptr<Connection>> accepted_;
  std::thread acceptor_;
};

}  // namespace tarn::test
