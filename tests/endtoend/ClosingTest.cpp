#include "tests/support/RedisServer.h"
#include "tests/support/program/ProgramTest.h"

namespace tarn::test {

namespace {

// Closes tabs and windows at every stage of the work under them: what runs on goes on without a view to show it in.
class ClosingWhileBusy : public ProgramTest {
protected:
  ClosingWhileBusy() {
    redis.command({"EVAL",
                   "for i = 1, 20000 do redis.call('HSET', 'key:hash', i, 'value') end "
                   "for i = 1, 3000 do redis.call('SET', 'key:' .. i, 'value') end",
                   "0"});
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

  RedisServer redis;
};

}  // namespace

TEST_F(ClosingWhileBusy, ATabOrTheWindowGoesAwayAtAnyMoment) {
  openWindow();
  for (int round = 0; round < 200; ++round) {
    startWork();
    for (int turn = 0; turn < round / 2 % 12; ++turn)
      settle();
    if (round % 2 == 0) {
      click(tab().btnClose);
      ASSERT_FALSE(tabOf());
    } else {
      dropWindow();
      settle();
      openWindow();
    }
  }
  // All of it still works.
  startWork();
  waitForText(tab().labStatus, "Status:Connected");
  EXPECT_TRUE(waitUntil([&] { return tab().valueDataHashTable.numberOfRows() == 20000; }));
}

}  // namespace tarn::test
