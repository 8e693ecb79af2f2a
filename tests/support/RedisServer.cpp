#include "tests/support/RedisServer.h"

#include "tests/support/RespClient.h"

#include <fcntl.h>
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

constexpr std::chrono::seconds patience{60};

std::filesystem::path makeFolder() {
  std::string path = (std::filesystem::temp_directory_path() / "tarn-redis-XXXXXX").string();
  if (::mkdtemp(path.data()) == nullptr) throw std::runtime_error("No folder for a redis-server: " + path);
  return path;
}

// True when `done` answered true in time.
bool waitFor(const std::function<bool()>& done) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (!done()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

}  // namespace

RedisServer::RedisServer(std::vector<std::string> options) : options_(std::move(options)), folder_(makeFolder()) {
  try {
    start();
  } catch (...) {
    kill();
    std::filesystem::remove_all(folder_);
    throw;
  }
}

RedisServer::~RedisServer() {
  kill();
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string RedisServer::command(const std::vector<std::string>& words, int database) const {
  RespClient client(port());
  if (const std::string secret = password(); !secret.empty()) client.command({"AUTH", secret});
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
  spawn();
  waitUntilItAnswers();
}

void RedisServer::freeze() {
  ::kill(pid_, SIGSTOP);
}

void RedisServer::spawn() {
  std::vector<std::string> words = {"redis-server", "--port", std::to_string(port()), "--bind", "127.0.0.1",
                                    "--save",       "",       "--appendonly",         "no",     "--daemonize",
                                    "no",           "--dir",  folder_.string()};
  words.insert(words.end(), options_.begin(), options_.end());
  std::vector<char*> arguments;
  for (std::string& word : words)
    arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const std::string logFile = (folder_ / "log").string();
  const pid_t parent = ::getpid();

  pid_ = ::fork();
  if (pid_ < 0) throw std::runtime_error("No process for a redis-server");
  if (pid_ > 0) return;

  // Other threads may have held locks at the fork: system calls only from here.
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(1);
  const int output = ::open(logFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const int input = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  ::dup2(input, STDIN_FILENO);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(output, STDERR_FILENO);
  ::execvp(arguments[0], arguments.data());
  ::_exit(127);
}

bool RedisServer::hasEnded() {
  if (::waitpid(pid_, nullptr, WNOHANG) == 0) return false;
  pid_ = -1;
  return true;
}

void RedisServer::waitUntilItAnswers() {
  const bool settled = waitFor([this] {
    try {
      return command({"PING"}) == "+PONG\r\n";
    } catch (const std::runtime_error&) {
      return hasEnded();
    }
  });
  if (!settled || pid_ < 0) throw std::runtime_error("redis-server doesn't answer: " + log());
}

std::string RedisServer::log() const {
  std::ifstream file(folder_ / "log");
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string RedisServer::password() const {
  const auto option = std::find(options_.begin(), options_.end(), "--requirepass");
  return option == options_.end() || option + 1 == options_.end() ? "" : *(option + 1);
}

RedisCluster::RedisCluster(const std::vector<std::string>& options) {
  constexpr int count = 3;
  constexpr int slots = 16384;
  for (int i = 0; i < count; ++i) {
    busPorts_.push_back(std::make_unique<LoopbackPort>());
    std::vector<std::string> words = {
        "--cluster-enabled",      "yes",  "--cluster-config-file", "nodes.conf",
        "--cluster-node-timeout", "5000", "--cluster-port",        std::to_string(busPorts_.back()->number())};
    words.insert(words.end(), options.begin(), options.end());
    masters_.push_back(std::make_unique<RedisServer>(std::move(words)));
  }

  for (int i = 0; i < count; ++i) {
    const int first = slots * i / count;
    const int last = slots * (i + 1) / count - 1;
    master(i).command({"CLUSTER", "SET-CONFIG-EPOCH", std::to_string(i + 1)});
    master(i).command({"CLUSTER", "ADDSLOTSRANGE", std::to_string(first), std::to_string(last)});
    if (i == 0) continue;
    master(i).command({"CLUSTER", "MEET", "127.0.0.1", std::to_string(master(0).port()),
                       std::to_string(busPorts_.front()->number())});
  }

  const bool formed = waitFor([this] {
    return std::all_of(masters_.begin(), masters_.end(), [](const auto& node) {
      const std::string info = node->command({"CLUSTER", "INFO"});
      const std::string nodes = node->command({"CLUSTER", "NODES"});
      return info.find("cluster_state:ok") != std::string::npos &&
             info.find("cluster_slots_ok:16384") != std::string::npos &&
             info.find("cluster_known_nodes:3") != std::string::npos && nodes.find("handshake") == std::string::npos;
    });
  });
  if (!formed) throw std::runtime_error("The cluster never got ready: " + master(0).command({"CLUSTER", "NODES"}));
}

RedisCluster::~RedisCluster() = default;

}  // namespace tarn::test
