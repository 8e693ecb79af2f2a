#include "tests/endtoend/Desk.h"
#include "tests/support/RedisServer.h"
#include "tests/support/RespClient.h"
#include "tests/support/widgets/Hand.h"

#include <string>
#include <vector>

namespace tarn::test {

namespace {

// Closes tabs and windows at every stage of the work under them: what runs on goes on without a view to show it in.
class ClosingWhileBusy : public Desk {
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
    storeFavourite("lake", redis.port());
  }

  // Connects, opens the first database and starts a search and a load of the large hash.
  void startWork() {
    clickTriangle("lake");
    ASSERT_TRUE(waitUntil([&] { return treeRows().size() > 2; }));
    clickTreeRow(treeRows()[2]);
    ASSERT_TRUE(hasTab());
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

constexpr int rounds = 200;

}  // namespace

TEST_F(ClosingWhileBusy, ATabGoesAway) {
  openWindow();
  for (int round = 0; round < rounds; ++round) {
    ASSERT_NO_FATAL_FAILURE(startWork());
    letItRun(round);
    click(tab().btnClose);
    ASSERT_FALSE(hasTab());
  }
  // All of it still works.
  ASSERT_NO_FATAL_FAILURE(startWork());
  EXPECT_TRUE(becomes(tab().labStatus, "Status:Connected"));
  EXPECT_TRUE(waitUntil([&] { return tab().valueDataHashTable.numberOfRows() == 20000; }));
}

TEST_F(ClosingWhileBusy, TheWindowGoesAway) {
  for (int round = 0; round < rounds; ++round) {
    openWindow();
    ASSERT_NO_FATAL_FAILURE(startWork());
    letItRun(round);
    dropWindow();
    settle();
  }
}

}  // namespace tarn::test
