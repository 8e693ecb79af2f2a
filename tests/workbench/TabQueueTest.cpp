#include <algorithm>
#include <future>

#include "tests/support/ScriptedServer.h"
#include "tests/workbench/TabFixture.h"

namespace tarn::test {
namespace {

using Texts = std::vector<std::string>;

// A server of four databases that answers by the first word, and remembers each request as one line of words.
class TabQueueTest : public TabFixture {
protected:
  ~TabQueueTest() override {
    server->closeConnection();
    tab.reset();
    settle();
  }

  void open() {
    openTab(peer.port());
    settle();
    const std::lock_guard lock(mutex);
    requests.clear();
  }

  Texts sent() {
    const std::lock_guard lock(mutex);
    return requests;
  }

  std::string replyTo(const Texts& words) {
    const std::string& command = words.front();
    if (command == "CONFIG") return "*2\r\n$9\r\ndatabases\r\n$1\r\n4\r\n";
    if (command == "SCAN") return "*2\r\n$1\r\n0\r\n*2\r\n$1\r\na\r\n$1\r\nb\r\n";
    if (command == "CLUSTER") return "-ERR This instance has cluster support disabled\r\n";
    if (command == "TYPE") return "+string\r\n";
    if (command == "TTL") return ":-1\r\n";
    if (command == "GET") return "$1\r\n" + words.at(1) + "\r\n";
    if (command == "SELECT" && refuseSelect) return "-ERR no\r\n";
    return "+OK\r\n";
  }

  void serve(ScriptedServer::Peer& at) {
    for (Texts words = at.readRequest(); !words.empty(); words = at.readRequest()) {
      std::transform(words.front().begin(), words.front().end(), words.front().begin(),
                     [](unsigned char c) { return std::toupper(c); });
      std::string line;
      for (const std::string& word : words)
        line += (line.empty() ? "" : " ") + word;
      if (words.front() != "INFO" && words.front() != "CLUSTER") {
        const std::lock_guard lock(mutex);
        requests.push_back(line);
      }
      if (words.front() == "SCAN" && hold) held.get_future().wait();
      at.send(replyTo(words));
    }
  }

  std::mutex mutex;
  Texts requests;
  std::atomic<bool> refuseSelect = false;
  std::atomic<bool> hold = false;
  std::promise<void> held;
  ScriptedServer peer{[this](ScriptedServer::Peer& at, int) { serve(at); }};
};

TEST_F(TabQueueTest, ALoadAsksForTypeTtlAndValueInThisOrder) {
  open();
  search("");
  outlets().tableKeys.selectRowIndexes({1}, false);
  waitUntilIdle();
  EXPECT_EQ(sent(), (Texts{"SCAN 0 MATCH * COUNT 1000", "TYPE b", "TTL b", "GET b"}));
}

TEST_F(TabQueueTest, WorkSelectsTheShownDatabaseWhereTheWireIsElsewhere) {
  open();
  tab->selectDatabase(2);
  search("");
  search("");
  EXPECT_EQ(sent(), (Texts{"SELECT 2", "SCAN 0 MATCH * COUNT 1000", "SCAN 0 MATCH * COUNT 1000"}));
}

TEST_F(TabQueueTest, WorkEndsWhereItsDatabaseIsRefused) {
  open();
  search("");
  tab->selectDatabase(2);
  refuseSelect = true;
  outlets().tableKeys.selectRowIndexes({0}, false);
  waitUntilIdle();
  EXPECT_EQ(sent(), (Texts{"SCAN 0 MATCH * COUNT 1000", "SELECT 2"}));
  EXPECT_EQ(alerts.shown().size(), 1U);
  EXPECT_EQ(outlets().labType.stringValue(), "Type:");
}

TEST_F(TabQueueTest, KeysOfADatabaseThatWasLeftAreNotListed) {
  open();
  search("");
  EXPECT_EQ(outlets().tableKeys.numberOfRows(), 2);
  hold = true;
  tab->search();
  ASSERT_TRUE(waitUntil([&] { return sent().size() == 2; }));
  hold = false;
  refuseSelect = true;
  choose(*outlets().popDatabase.widget(), 1);
  held.set_value();
  waitUntilIdle();
  EXPECT_EQ(sent().back(), "SELECT 1");
  EXPECT_EQ(outlets().tableKeys.numberOfRows(), 0);
}

TEST_F(TabQueueTest, AnOlderLoadRunsOnButFillsNothing) {
  open();
  search("");
  outlets().tableKeys.selectRowIndexes({0}, false);
  outlets().tableKeys.selectRowIndexes({1}, false);
  waitUntilIdle();
  EXPECT_EQ(outlets().txtKey.stringValue(), "b");
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "b");
  const Texts requests = sent();
  EXPECT_EQ(requests.size(), 7U);
  EXPECT_EQ(std::count(requests.begin(), requests.end(), "GET a"), 1);
}

TEST_F(TabQueueTest, AResetLetsNoRunningLoadFillTheForm) {
  open();
  search("");
  outlets().tableKeys.selectRowIndexes({0}, false);
  tab->resetWorkbenchView();
  waitUntilIdle();
  EXPECT_EQ(outlets().txtKey.stringValue(), "");
  EXPECT_EQ(outlets().valueDataStringTxtView.string(), "");
}

TEST_F(TabQueueTest, TheActivityBarMovesWhileWorkLasts) {
  open();
  hold = true;
  tab->search();
  EXPECT_FALSE(outlets().activityBar.isAnimating());
  EXPECT_TRUE(waitUntil([&] { return outlets().activityBar.isAnimating(); }));
  hold = false;
  held.set_value();
  EXPECT_TRUE(waitUntil([&] { return !outlets().activityBar.isAnimating(); }));
}

}  // namespace
}  // namespace tarn::test
