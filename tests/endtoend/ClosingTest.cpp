#include "tests/support/RedisServer.h"
#include "tests/support/RespPeer.h"
#include "tests/support/program/ProgramTest.h"

#include <string>
#include <vector>

namespace tarn::test {

namespace {

// Closes tabs and windows at every stage of the work under them: what runs on goes on without a view to show it in.
class ClosingWhileBusy : public ProgramTest {
protected:
  ClosingWhileBusy() {
    std::vector<std::vector<std::string>> requests;
    for (int i = 0; i < 3000; ++i)
      requests.push_back({"SET", "key:" + std::to_string(i), "value"});
    std::vector<std::string> hash = {"HSET", "key:hash"};
    for (int i = 0; i < 20000; ++i)
      hash.insert(hash.end(), {"field " + std::to_string(i), "value"});
    requests.push_back(std::move(hash));
    RespClient(redis.port()).pipeline(requests);
    store("lake", redis.port());
  }

  // Connects, opens the first database and starts a search and a load of the large hash.
  void startWork() {
    openDatabase("lake", "db0(");
    tab().txtSearchKey.setStringValue("key");
    click(tab().chkExactly);
    click(tab().chkExactly);
    tab().txtKey.setStringValue("key:hash");
    click(tab().btnReload);
  }

  // A different moment of the work for each number.
  static void letItRun(int number) {
    for (int turn = 0; turn < number % 12; ++turn)
      settle();
  }

  RedisServer redis;
};

constexpr int rounds = 100;

}  // namespace

TEST_F(ClosingWhileBusy, ATabGoesAway) {
  openWindow();
  for (int round = 0; round < rounds; ++round) {
    startWork();
    letItRun(round);
    click(tab().btnClose);
    ASSERT_FALSE(tabOf());
  }
  // All of it still works.
  startWork();
  waitForText(tab().labStatus, "Status:Connected");
  EXPECT_TRUE(waitUntil([&] { return tab().valueDataHashTable.numberOfRows() == 20000; }));
}

TEST_F(ClosingWhileBusy, TheWindowGoesAway) {
  for (int round = 0; round < rounds; ++round) {
    openWindow();
    startWork();
    letItRun(round);
    dropWindow();
    settle();
  }
}

}  // namespace tarn::test
