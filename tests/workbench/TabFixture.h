#pragma once

#include "tests/support/AlertRecorder.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/widgets/Hand.h"
#include "wire/ServerItem.h"
#include "workbench/OperationTabViewController.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn::test {

using Texts = std::vector<std::string>;

// In whatever has the keyboard.
inline void replaceText(std::string_view text) {
  press(Qt::Key_A, Qt::ControlModifier);
  press(Qt::Key_Delete);
  type(text);
}

inline std::string joined(const Texts& texts, const char* separator = "|") {
  std::string result;
  for (const std::string& text : texts)
    result += (&text == &texts.front() ? "" : separator) + text;
  return result;
}

// The word of each step of a script, and what it is done to.
template <class Take>
void forEachStep(const std::string& script, const std::string& separator, Take take) {
  for (std::size_t at = 0, end = 0; at < script.size(); at = end + separator.size()) {
    end = std::min(script.find(separator, at), script.size());
    const std::string step = script.substr(at, end - at);
    const std::string word = step.substr(0, step.find(' '));
    take(word, step.substr(std::min(word.size() + 1, step.size())));
  }
}

// A tab on the screen, bound to a connection on a loopback port.
class TabFixture : public ::testing::Test {
protected:
  ~TabFixture() override {
    if (server) server->closeConnection();
  }

  // Lists the keys.
  void openTab(int port) {
    server = std::make_shared<ServerItem>();
    server->setServerIp("127.0.0.1");
    server->setServerPort(port);
    server->setDefaultCharset("utf8");
    ASSERT_TRUE(server->connectToServer().ok);
    server->loadDatabases();
    tab = std::make_shared<OperationTabViewController>();
    show(*tab->view().widget(), {900, 560});
    tab->open(server);
    search("");
  }

  OperationTabLayout& outlets() { return tab->outlets(); }
  Texts keys() { return texts(outlets().tableKeys); }

  void waitUntilIdle() {
    ASSERT_TRUE(waitUntil([&] {
      settle();
      return server->operationQueue().operationCount() == 0;
    }));
    settle();
  }

  void search(std::string_view text) {
    outlets().txtSearchKey.setStringValue(text);
    tab->search();
    waitUntilIdle();
  }
  // Selects the first key that shows this text, and waits for its value.
  void selectKey(const std::string& text) {
    const Texts shown = keys();
    outlets().tableKeys.deselectAll();
    outlets().tableKeys.selectRow(static_cast<int>(std::ranges::find(shown, text) - shown.begin()));
    waitUntilIdle();
  }
  void reload() {
    click(outlets().btnReload);
    waitUntilIdle();
  }
  static void typeInto(NSView& field, std::string_view text) {
    field.becomeFirstResponder();
    replaceText(text);
  }

  AlertRecorder alerts;
  std::shared_ptr<ServerItem> server;
  std::shared_ptr<OperationTabViewController> tab;
};

// A server of four databases that takes everything, lists the keys "a", "b" and "c", which are strings of their names
// or of one type and value, and remembers each request of a tab's own as one line of words.
class RecordingServer final {
public:
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
  Texts sent() {
    const std::lock_guard lock(mutex_);
    return std::exchange(sent_, {});
  }

  // No scan is answered while a test holds it.
  std::mutex scans;

private:
  std::string take(const Texts& words) {
    const std::lock_guard lock(mutex_);
    const std::string& command = words.front();
    if (!std::set<std::string>{"info", "cluster", "config"}.contains(command)) sent_.push_back(joined(words, " "));
    if (special_.contains(command)) return special_.at(command);
    if (usual_.contains(command)) return usual_.at(command);
    return command == "get" ? "$1\r\n" + words.at(1) + "\r\n" : "+OK\r\n";
  }

  void serve(ScriptedServer::Peer& at) {
    for (Texts words = at.readRequest(); !words.empty(); words = at.readRequest()) {
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
  Texts sent_;
  ScriptedServer peer_{[this](ScriptedServer::Peer& at, int) { serve(at); }};
};

// A tab of a server that remembers what the tab sends, and says what a real one wouldn't.
class RecordedTab : public TabFixture {
protected:
  void openKeys() {
    openTab(peer.port());
    peer.sent();
  }

  RecordingServer peer;
};

}  // namespace tarn::test
