#pragma once

#include "tests/support/LoopbackPort.h"
#include "tests/support/TemporaryFolder.h"

#include <iterator>
#include <list>
#include <string>
#include <vector>

namespace tarn::test {

// A real redis-server of the test's own, on a free loopback port, with its files in a folder of its own; both go with
// the object. The constructor returns when the server answers, and throws std::runtime_error if it never does. The
// server also ends when the thread that started it does, so that a test that crashes leaves none behind.
class RedisServer final {
public:
  // `options` are those of its command line, such as {"--requirepass", "secret", "--databases", "4"}.
  explicit RedisServer(std::vector<std::string> options = {});
  ~RedisServer() { kill(); }

  int port() const { return port_.number(); }

  // Sends one command on a connection of its own and answers with the raw reply, whole; for setting up and checking.
  // A password in the options is given first. Throws std::runtime_error where no whole reply comes within a minute.
  std::string command(const std::vector<std::string>& words, int database = 0) const;

  // Ends the server, as a crash does; `start` brings it up again on the same port, empty.
  void kill();
  void start();
  // Stops the process: its sockets stay open and nothing answers.
  void freeze();

private:
  const std::vector<std::string> options_;
  const LoopbackPort port_;
  const TemporaryFolder folder_;
  int pid_ = -1;
};

// Three masters without replicas that own all slots between them, each aware of the others when the constructor
// returns.
class RedisCluster final {
public:
  explicit RedisCluster(const std::vector<std::string>& options = {});

  RedisServer& master(int index) { return *std::next(masters_.begin(), index); }

private:
  std::list<LoopbackPort> busPorts_;
  std::list<RedisServer> masters_;
};

}  // namespace tarn::test
