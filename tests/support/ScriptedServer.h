#pragma once

#include "tests/support/RespPeer.h"

#include <sys/socket.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <list>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tarn::test {

// A server on a loopback port that does what no real one does. Each accepted connection runs the script on a thread of
// its own. The destructor shuts all down and waits for the scripts: one that stalls should do so in readRequest.
class ScriptedServer final {
public:
  using Peer = RespPeer;
  // The connection closes when it returns. `connection` counts from 0.
  using Script = std::function<void(Peer& peer, int connection)>;

  explicit ScriptedServer(Script script) : script_(std::move(script)) {
    if (::listen(port_.descriptor(), SOMAXCONN) != 0) throw std::runtime_error("Can't listen on 127.0.0.1");
    acceptor_ = std::thread([this] { acceptAll(); });
  }
  ~ScriptedServer() {
    ::shutdown(port_.descriptor(), SHUT_RDWR);
    acceptor_.join();
    for (Peer& peer : accepted_)
      peer.shutDown();
    for (std::thread& script : scripts_)
      script.join();
  }

  int port() const { return port_.number(); }
  int connections() const { return connections_; }

  // All bytes received so far, connection by connection in the order accepted.
  std::vector<std::string> received() const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> all;
    for (const Peer& peer : accepted_)
      all.push_back(peer.received());
    return all;
  }

private:
  void acceptAll() {
    for (;;) {
      const int descriptor = ::accept4(port_.descriptor(), nullptr, nullptr, SOCK_CLOEXEC);
      if (descriptor < 0 && (errno == EINTR || errno == ECONNABORTED)) continue;
      if (descriptor < 0) return;
      const std::lock_guard lock(mutex_);
      scripts_.emplace_back([this, &peer = accepted_.emplace_back(descriptor), number = connections_++] {
        script_(peer, number);
        peer.close();
      });
    }
  }

  Script script_;
  LoopbackPort port_;
  std::atomic<int> connections_ = 0;
  mutable std::mutex mutex_;
  std::list<Peer> accepted_;
  std::vector<std::thread> scripts_;
  std::thread acceptor_;
};

}  // namespace tarn::test
