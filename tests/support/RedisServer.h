#pragma once

#include "tests/support/LoopbackPort.h"

#include <cstddef>
#include <filesystem>
#include <memory>
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
  RedisServer(const RedisServer&) = delete;
  RedisServer& operator=(const RedisServer&) = delete;
  ~RedisServer();

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
  void spawn();
  bool hasEnded();
  void waitUntilItAnswers();
  std::string log() const;
  std::string password() const;

  std::vector<std::string> options_;
  LoopbackPort port_;
  std::filesystem::path folder_;
  int pid_ = -1;
};

// Three masters without replicas that own all slots between them, each aware of the others when the constructor
// returns.
class RedisCluster final {
public:
  explicit RedisCluster(const std::vector<std::string>& options = {});
  RedisCluster(const RedisCluster&) = delete;
  RedisCluster& operator=(const RedisCluster&) = delete;
  ~RedisCluster();

  RedisServer& master(int index) { return *masters_[static_cast<std::size_t>(index)]; }

private:
  std::vector<std::unique_ptr<LoopbackPort>> busPorts_;
  std::vector<std::unique_ptr<RedisServer>> masters_;
};

}  // namespace tarn::test
