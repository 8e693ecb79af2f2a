#pragma once

#include "tests/support/RespPeer.h"
#include "tests/support/TemporaryFolder.h"

#include <signal.h>

#include <iterator>
#include <list>
#include <string>
#include <vector>

namespace tarn::test {

// A real redis-server of the test's own. The constructor returns when the server answers, and throws
// std::runtime_error if it never does. The server also ends with the thread that started it.
class RedisServer final {
public:
  explicit RedisServer(std::vector<std::string> options = {});
  ~RedisServer() { kill(); }

  int port() const { return port_.number(); }

  // The raw reply to one command on a connection of its own, which gives the password of the options first.
  std::string command(const std::vector<std::string>& words, int database = 0) const;

  // Ends the server, as a crash does; `start` brings it up again on the same port, empty.
  void kill();
  void start();
  // Stops the process: its sockets stay open and nothing answers, until it goes on.
  void freeze() { ::kill(pid_, SIGSTOP); }
  void thaw() { ::kill(pid_, SIGCONT); }
  std::string password() const;

private:
  const std::vector<std::string> options_;
  const LoopbackPort port_;
  const TemporaryFolder folder_;
  int pid_ = -1;
};

// Three masters without replicas that own all slots between them.
class RedisCluster final {
public:
  explicit RedisCluster(const std::vector<std::string>& options = {});

  RedisServer& master(int index) { return *std::next(masters_.begin(), index); }

private:
  std::list<LoopbackPort> busPorts_;
  std::list<RedisServer> masters_;
};

}  // namespace tarn::test
