#pragma once

#include "tests/support/ScriptedServer.h"

#include <map>
#include <mutex>
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

  int port() const { return peer_.port(); }

  // What TYPE says of every key, and the reply to the command that reads its value.
  void hold(const std::string& type, const std::string& value) {
    const std::lock_guard lock(mutex_);
    usual_["type"] = "+" + type + "\r\n";
    for (const char* reader : {"get", "lrange", "sscan", "hscan", "zrange"})
      usual_[reader] = value;
  }

  // To each command of this name, until all is allowed again; an empty reply is the end of the connection.
  void reply(const std::string& command, const std::string& reply) {
    const std::lock_guard lock(mutex_);
    special_[command] = reply;
  }
  void allow() {
    const std::lock_guard lock(mutex_);
    special_.clear();
  }

  // All since the last call.
  Lines sent() {
    const std::lock_guard lock(mutex_);
    return std::exchange(sent_, {});
  }

  // No scan is answered while a test holds it.
  std::mutex scans;

private:
  std::string take(const Lines& words) {
    const std::lock_guard lock(mutex_);
    const std::string& command = words.front();
    if (!std::set<std::string>{"info", "cluster", "config"}.contains(command)) {
      sent_.push_back(command);
      for (std::size_t i = 1; i < words.size(); ++i)
        sent_.back() += " " + words[i];
    }
    if (special_.contains(command)) return special_.at(command);
    if (usual_.contains(command)) return usual_.at(command);
    return command == "get" ? "$1\r\n" + words.at(1) + "\r\n" : "+OK\r\n";
  }

  void serve(ScriptedServer::Peer& at) {
    for (Lines words = at.readRequest(); !words.empty(); words = at.readRequest()) {
      const std::string reply = take(words);
      if (reply.empty()) return;
      if (words.front() == "scan") const std::lock_guard wait(scans);
      at.send(reply);
    }
  }

  std::mutex mutex_;
  std::map<std::string, std::string> special_;
  std::map<std::string, std::string> usual_{{"config", "*2\r\n$9\r\ndatabases\r\n$1\r\n4\r\n"},
                                            {"cluster", "-ERR This instance has cluster support disabled\r\n"},
                                            {"scan", "*2\r\n$1\r\n0\r\n*3\r\n$1\r\na\r\n$1\r\nb\r\n$1\r\nc\r\n"},
                                            {"type", "+string\r\n"},
                                            {"ttl", ":-1\r\n"}};
  Lines sent_;
  ScriptedServer peer_{[this](ScriptedServer::Peer& at, int) { serve(at); }};
};

}  // namespace tarn::test
