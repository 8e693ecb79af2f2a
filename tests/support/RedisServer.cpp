#include "tests/support/RedisServer.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
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

std::string RedisServer::password() const {
  const auto option = std::find(options_.begin(), options_.end(), "--requirepass");
  return option == options_.end() ? "" : *std::next(option);
}

std::string RedisServer::command(const std::vector<std::string>& words, int database) const {
  RespClient client(port());
  if (!password().empty()) client.command({"AUTH", password()});
  if (database != 0) client.command({"SELECT", std::to_string(database)});
  return client.command(words);
}

void RedisServer::kill() {
  if (pid_ < 0) return;
  ::kill(pid_, SIGKILL);
  ::waitpid(pid_, nullptr, 0);
  pid_ = -1;
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
  std::string create = "redis-cli --cluster create --cluster-yes";
  for (int i = 0; i < 3; ++i) {
    const std::string busPort = std::to_string(busPorts_.emplace_back().number());
    std::vector<std::string> words = {"--cluster-enabled", "yes", "--cluster-port", busPort};
    words.insert(words.end(), options.begin(), options.end());
    create += " 127.0.0.1:" + std::to_string(masters_.emplace_back(words).port()) + "@" + busPort;
  }
  const std::string password = masters_.front().password();
  if (!password.empty()) create.insert(0, "REDISCLI_AUTH=" + password + " ");
  const auto isReady = [](const RedisServer& node) {
    return node.command({"CLUSTER", "INFO"}).find("cluster_state:ok") != std::string::npos;
  };
  if (std::system((create + " >/dev/null").c_str()) == 0 &&
      waitFor([&] { return std::ranges::all_of(masters_, isReady); }))
    return;
  throw std::runtime_error("The cluster never got ready");
}

}  // namespace tarn::test
