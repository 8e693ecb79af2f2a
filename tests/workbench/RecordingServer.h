#pragma once

#include "tests/support/ScriptedServer.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarn::test {

// A server of four databases that takes everything, lists the keys "a", "b" and "c", which are strings of their names
// or of one type and value, and remembers each request of a tab's own as one line of words.
class RecordingServer final {
public:
  using Lines = std::vector<std::string>;

  ~RecordingServer() { releaseScans(); }

  int port() const { return peer_.port(); }

  // What TYPE says of every key, and the reply to the command that reads its value.
  void hold(std::string type, std::string value) {
    const std::lock_guard lock(mutex_);
    type_ = std::move(type);
    value_ = std::move(value);
  }

  // From the next command of this name on: this reply, an error, or the end of the connection.
  void reply(const std::string& command, std::string reply) {
    const std::lock_guard lock(mutex_);
    replies_[command] = std::move(reply);
  }
  void refuse(const std::string& command) { reply(command, "-ERR refused\r\n"); }
  void closeAt(const std::string& command) { reply(command, ""); }
  void allow() {
    const std::lock_guard lock(mutex_);
    replies_.clear();
  }

  // A scan is answered when it is released.
  void holdScans() {
    const std::lock_guard lock(mutex_);
    holdsScans_ = true;
  }
  void releaseScans() {
    const std::lock_guard lock(mutex_);
    holdsScans_ = false;
    released_.notify_all();
  }

  // All since the last call.
  Lines sent() {
    const std::lock_guard lock(mutex_);
    return std::exchange(sent_, {});
  }

private:
  std::string replyTo(const Lines& words) {
    const std::string& command = words.front();
    if (const auto special = replies_.find(command); special != replies_.end()) return special->second;
    if (command == "type") return "+" + type_ + "\r\n";
    static const std::map<std::string, std::string> usual{
        {"config", "*2\r\n$9\r\ndatabases\r\n$1\r\n4\r\n"},
        {"scan", "*2\r\n$1\r\n0\r\n*3\r\n$1\r\na\r\n$1\r\nb\r\n$1\r\nc\r\n"},
        {"cluster", "-ERR This instance has cluster support disabled\r\n"},
        {"ttl", ":-1\r\n"}};
    if (usual.contains(command)) return usual.at(command);
    if (value_ && std::set<std::string>{"get", "lrange", "sscan", "hscan", "zrange"}.contains(command)) return *value_;
    return command == "get" ? "$1\r\n" + words.at(1) + "\r\n" : "+OK\r\n";
  }

  void serve(ScriptedServer::Peer& at) {
    for (Lines words = at.readRequest(); !words.empty(); words = at.readRequest()) {
      std::string line;
      for (const std::string& word : words)
        line += (line.empty() ? "" : " ") + word;
      std::unique_lock lock(mutex_);
      if (!std::set<std::string>{"info", "cluster", "config"}.contains(words.front())) sent_.push_back(line);
      if (words.front() == "scan") released_.wait(lock, [this] { return !holdsScans_; });
      const std::string reply = replyTo(words);
      lock.unlock();
      if (reply.empty()) return;
      at.send(reply);
    }
  }

  std::mutex mutex_;
  std::string type_ = "string";
  std::optional<std::string> value_;
  std::map<std::string, std::string> replies_;
  Lines sent_;
  bool holdsScans_ = false;
  std::condition_variable released_;
  ScriptedServer peer_{[this](ScriptedServer::Peer& at, int) { serve(at); }};
};

}  // namespace tarn::test
