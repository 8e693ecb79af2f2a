#include "tests/support/RedisServer.h"

#include "tests/support/RespPeer.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <thread>

namespace tarn::test {

namespace {

// True when `done` answered true within a minute.
bool waitFor(const std::function<bool()>& done) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!done()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

}  // namespace

RedisServer::RedisServer(std::vector<std::string> options) : options_(std::move(options)) {
  start();
}

std::string RedisServer::command(const std::vector<std::string>& words, int database) const {
  RespClient client(port());
  const auto option = std::find(options_.begin(), options_.end(), "--requirepass");
  if (option != options_.end()) client.command({"AUTH", *std::next(option)});
  if (database != 0) client.command({"SELECT", std::to_string(database)});
  return client.command(words);
}

void RedisServer::kill() {
  if (pid_ < 0) return;
  ::kill(pid_, SIGKILL);
  ::waitpid(pid_, nullptr, 0);
  pid_ = -1;
}

void RedisServer::freeze() {
  ::kill(pid_, SIGSTOP);
}

void RedisServer::start() {
  if (pid_ >= 0) return;
  const std::string log = (folder_.path() / "log").string();
  std::vector<std::string> words = {"redis-server", "--bind", "127.0.0.1", "--save", "", "--logfile", log};
  words.insert(words.end(), {"--port", std::to_string(port()), "--dir", folder_.path().string()});
  words.insert(words.end(), options_.begin(), options_.end());
  std::vector<char*> arguments;
  for (std::string& word : words)
    arguments.push_back(word.data());
  arguments.push_back(nullptr);

  pid_ = ::fork();
  if (pid_ == 0) {
    // Other threads may have held locks at the fork: system calls only.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::execvp(arguments[0], arguments.data());
    ::_exit(127);
  }
  const bool answers = pid_ > 0 && waitFor([this] {
                         try {
                           return command({"PING"}) == "+PONG\r\n";
                         } catch (const std::runtime_error&) {
                           return ::waitpid(pid_, nullptr, WNOHANG) != 0;
                         }
                       });
  if (answers && ::kill(pid_, 0) == 0) return;
  pid_ = -1;
  throw std::runtime_error("redis-server doesn't answer: " +
                           std::string(std::istreambuf_iterator<char>(std::ifstream(log).rdbuf()), {}));
}

RedisCluster::RedisCluster(const std::vector<std::string>& options) {
  constexpr int count = 3;
  constexpr int slots = 16384;
  for (int i = 0; i < count; ++i) {
    const int busPort = busPorts_.emplace_back().number();
    std::vector<std::string> words = {
        "--cluster-enabled", "yes", "--cluster-config-file", "nodes.conf", "--cluster-port", std::to_string(busPort)};
    words.insert(words.end(), options.begin(), options.end());
    const RedisServer& node = masters_.emplace_back(std::move(words));
    const auto slot = [&](int share) { return std::to_string(slots * share / count); };
    node.command({"CLUSTER", "SET-CONFIG-EPOCH", std::to_string(i + 1)});
    node.command({"CLUSTER", "ADDSLOTSRANGE", slot(i), std::to_string(std::stoi(slot(i + 1)) - 1)});
    if (i == 0) continue;
    node.command({"CLUSTER", "MEET", "127.0.0.1", std::to_string(masters_.front().port()),
                  std::to_string(busPorts_.front().number())});
  }
  const auto knowsAll = [](const RedisServer& node) {
    const std::string info = node.command({"CLUSTER", "INFO"});
    return info.find("cluster_state:ok") != std::string::npos &&
           info.find("cluster_slots_ok:16384") != std::string::npos &&
           info.find("cluster_known_nodes:3") != std::string::npos &&
           node.command({"CLUSTER", "NODES"}).find("handshake") == std::string::npos;
  };
  if (waitFor([&] { return std::all_of(masters_.begin(), masters_.end(), knowsAll); })) return;
  throw std::runtime_error("The cluster never got ready: " + masters_.front().command({"CLUSTER", "NODES"}));
}

}  // namespace tarn::test
