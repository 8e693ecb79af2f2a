// The queues, and the timers of the main loop.

#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/NSRunLoop.h"
#include "platform/foundation/NSTimer.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tarn::test {
namespace {

using namespace std::chrono_literals;
using Clock = NSRunLoop::Clock;

NSRunLoop& loop() {
  return NSRunLoop::mainRunLoop();
}

// The main loop without a toolkit: drains the main queue and fires timers until `done`. False if that never comes.
bool runUntil(const std::function<bool()>& done) {
  const auto end = Clock::now() + 20s;
  while (!done()) {
    if (Clock::now() > end) return false;
    NSOperationQueue::mainQueue().drain();
    loop().fireTimers();
    std::this_thread::yield();
  }
  return true;
}

bool becomesIdle(const NSOperationQueue& queue) {
  return runUntil([&] { return queue.operationCount() == 0; });
}

TEST(NSOperationQueue, RunsAsManyAtOnceAsAllowedAndNoMore) {
  NSOperationQueue queue(3);
  std::atomic<int> running = 0, arrived = 0, most = 0;
  for (int i = 0; i < 200; ++i) {
    queue.addOperationWithBlock([&] {
      most = std::max(most.load(), ++running);
      for (++arrived; arrived < 3;)
        std::this_thread::yield();
      --running;
    });
  }
  ASSERT_TRUE(becomesIdle(queue));
  EXPECT_EQ(most, 3);
}

TEST(NSOperationQueue, RunsABarrierAfterAllBeforeItAndBeforeAllBehindIt) {
  NSOperationQueue queue(4);
  std::atomic<int> ended = 0;
  for (int round = 1; round <= 50; ++round) {
    for (int i = 0; i < 4; ++i)
      queue.addOperationWithBlock([&] { ++ended; });
    queue.addBarrierBlock([&ended, round] { EXPECT_EQ(ended, 4 * round); });
  }
  ASSERT_TRUE(becomesIdle(queue));
}

TEST(NSOperationQueue, ACallerWorksBesideBlocksButNotBesideABarrier) {
  NSOperationQueue queue(2);
  std::atomic<bool> barrierRan = false;
  queue.performBesideOperations([&] {
    queue.addOperationWithBlock([] {});
    queue.addBarrierBlock([&] { barrierRan = true; });
    EXPECT_TRUE(runUntil([&] { return queue.operationCount() == 1; }));
    EXPECT_FALSE(barrierRan);
  });
  EXPECT_TRUE(runUntil([&] { return barrierRan.load(); }));
}

// Callers of either kind among blocks and barriers: one that is to work alone does so, and all that waits gets its turn
// afterwards.
TEST(NSOperationQueue, GivesEachItsTurnAmongManyCallers) {
  NSOperationQueue queue(2);
  std::atomic<int> running = 0, seen = 0, turns = 0;
  const auto busy = [&] {
    ++running;
    for (int i = 0; i < 100; ++i)
      std::this_thread::yield();
    --running;
  };
  const auto alone = [&] {
    seen += running++;
    std::this_thread::yield();
    seen += --running;
    ++turns;
  };
  std::vector<std::thread> callers;
  for (int caller = 0; caller < 3; ++caller) {
    callers.emplace_back([&] {
      for (int round = 0; round < 20; ++round) {
        queue.addOperationWithBlock(busy);
        queue.addBarrierBlock(alone);
        queue.performBesideOperations(busy);
        queue.performAsBarrier(alone);
      }
    });
  }
  for (std::thread& caller : callers)
    caller.join();
  ASSERT_TRUE(becomesIdle(queue));
  EXPECT_EQ(seen, 0);
  EXPECT_EQ(turns, 120);
}

TEST(NSOperationQueue, NeverRunsWhatWasCancelledOrLeftBehind) {
  std::promise<void> gate;
  std::atomic<bool> hasStarted = false, hasEnded = false, droppedRan = false;
  const auto dropped = [&] { droppedRan = true; };
  {
    NSOperationQueue queue(1);
    queue.addOperationWithBlock([&] {
      hasStarted = true;
      gate.get_future().wait();
      hasEnded = true;
    });
    ASSERT_TRUE(runUntil([&] { return hasStarted.load(); }));
    queue.addOperationWithBlock(dropped);
    queue.addBarrierBlock(dropped);
    EXPECT_EQ(queue.operationCount(), 3U);
    queue.cancelAllOperations();
    EXPECT_EQ(queue.operationCount(), 1U);
    queue.addOperationWithBlock(dropped);
  }
  gate.set_value();
  EXPECT_TRUE(runUntil([&] { return hasEnded.load(); }));
  EXPECT_FALSE(droppedRan);
}

TEST(NSOperationQueue, MayBeDestroyedByItsOwnLastBlock) {
  std::atomic<int> gone = 0;
  for (int i = 0; i < 500; ++i) {
    auto queue = std::make_shared<NSOperationQueue>(2);
    const std::shared_ptr<void> telltale(nullptr, [&gone](void*) { ++gone; });
    queue->addOperationWithBlock([queue, telltale] {});
    queue.reset();
  }
  EXPECT_TRUE(runUntil([&] { return gone == 500; }));
}

TEST(NSOperationQueueDeathTest, RunsABlockOnceTheSystemHasAThreadForIt) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto runLate = [] {
    // The superuser may have any number of threads.
    constexpr uid_t nobody = 65534;
    if (geteuid() == 0 && setuid(nobody) != 0) _exit(1);
    rlimit before{};
    getrlimit(RLIMIT_NPROC, &before);
    const rlimit none = {0, before.rlim_max};
    setrlimit(RLIMIT_NPROC, &none);
    NSOperationQueue queue(2);
    std::atomic<int> ran = 0;
    queue.addOperationWithBlock([&] { ++ran; });
    queue.addBarrierBlock([&] { ++ran; });
    if (queue.operationCount() != 2) _exit(2);
    setrlimit(RLIMIT_NPROC, &before);
    _exit(becomesIdle(queue) && ran == 2 ? 0 : 3);
  };
  EXPECT_EXIT(runLate(), testing::ExitedWithCode(0), "");
}

TEST(MainQueue, RunsBlocksInOrderNeverInPlaceAndWakesItsLoopAtEachPost) {
  MainQueue queue;
  int wakes = 0;
  queue.setWaker([&] { ++wakes; });
  std::string order;
  queue.addOperationWithBlock([&] {
    order += "a";
    queue.addOperationWithBlock([&] { order += "c"; });
    // As an alert's loop does.
    EXPECT_FALSE(queue.drain());
    order += "A";
  });
  std::thread([&] { queue.addOperationWithBlock([&] { order += "b"; }); }).join();
  EXPECT_EQ(order, "");
  EXPECT_TRUE(queue.drain());
  EXPECT_EQ(order, "aAbc");
  EXPECT_EQ(wakes, 3);
  EXPECT_FALSE(queue.drain());
}

// Keeps all timers back until this moment, as a user does who answers an alert late.
void holdBackUntil(Clock::time_point moment) {
  const NSRunLoop::ModalSession outer;
  { const NSRunLoop::ModalSession inner; }
  EXPECT_TRUE(runUntil([&] { return Clock::now() >= moment; }));
  EXPECT_FALSE(loop().nextFireDate());
}

TEST(NSTimer, FiresInTheOrderOfItsTimesAndHoldsTheOthersBackWhileItAsks) {
  std::string order;
  std::optional<NSRunLoop::ModalSession> alert;
  NSTimer::scheduledTimerWithTimeInterval(0.002, false, [&] { order += "b"; });
  const auto never = NSTimer::scheduledTimerWithTimeInterval(0.003, false, [&] { order += "x"; });
  NSTimer::scheduledTimerWithTimeInterval(0.001, false, [&] {
    order += "a";
    never->invalidate();
    alert.emplace();
    loop().fireTimers();
  });
  NSTimer::scheduledTimerWithTimeInterval(0.004, false, [&] { order += "c"; });
  holdBackUntil(Clock::now() + 4ms);
  loop().fireTimers();
  EXPECT_EQ(order, "a");
  alert.reset();
  loop().fireTimers();
  EXPECT_EQ(order, "abc");
  EXPECT_FALSE(loop().nextFireDate());
}

TEST(NSTimer, FiresOnceForAllTimesThatItMissedAndThenAtItsNext) {
  int ticks = 0;
  std::shared_ptr<NSTimer> timer;
  timer = NSTimer::scheduledTimerWithTimeInterval(0.005, true, [&] {
    if (++ticks == 2) timer->invalidate();
  });
  const auto due = loop().nextFireDate();
  ASSERT_TRUE(due);
  holdBackUntil(*due + 12ms);
  EXPECT_EQ(ticks, 0);
  EXPECT_EQ(loop().nextFireDate(), due);
  loop().fireTimers();
  EXPECT_EQ(ticks, 1);
  const auto next = loop().nextFireDate();
  ASSERT_TRUE(next);
  EXPECT_GE(*next, *due + 15ms);
  EXPECT_EQ((*next - *due) % 5ms, 0ms);
  EXPECT_TRUE(runUntil([&] { return ticks == 2; }));
  EXPECT_FALSE(loop().nextFireDate());
}

TEST(NSTimer, MayBeInvalidatedByAnyThreadAndLetsItsBlockGo) {
  for (int round = 0; round < 50; ++round) {
    std::atomic<int> ticks = 0;
    auto held = std::make_shared<int>(0);
    const auto timer = NSTimer::scheduledTimerWithTimeInterval(0.0005, true, [&ticks, held] { ++ticks; });
    std::thread other([&] {
      while (ticks < 2)
        std::this_thread::yield();
      timer->invalidate();
    });
    EXPECT_TRUE(runUntil([&] { return held.use_count() == 1; }));
    other.join();
    EXPECT_FALSE(loop().nextFireDate());
  }
}

}  // namespace
}  // namespace tarn::test
