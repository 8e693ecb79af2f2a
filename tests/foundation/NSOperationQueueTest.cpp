#include "platform/foundation/Immortal.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/NSRunLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace tarn {
namespace {

using namespace std::chrono_literals;

bool waitFor(const std::function<bool()>& done) {
  return NSRunLoop::mainRunLoop().runUntil(done, 20s);
}

bool waitUntilIdle(const NSOperationQueue& queue) {
  return waitFor([&] { return queue.operationCount() == 0; });
}

std::ptrdiff_t threadsOfProcess() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

// Holds a block up until it is opened.
struct Gate {
  std::promise<void> opener;
  std::shared_future<void> opened = opener.get_future().share();

  NSOperationQueue::Block block() const {
    return [opened = opened] { opened.wait(); };
  }
  void open() { opener.set_value(); }
};

TEST(NSOperationQueue, RunsBlocksInTheOrderAdded) {
  NSOperationQueue queue(1);
  std::vector<int> order;
  for (int i = 0; i < 200; ++i)
    queue.addOperationWithBlock([&order, i] { order.push_back(i); });
  ASSERT_TRUE(waitUntilIdle(queue));
  EXPECT_EQ(order.size(), 200U);
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(NSOperationQueue, RunsAsManyAtOnceAsAllowedAndNoMore) {
  NSOperationQueue queue(3);
  std::atomic<int> running = 0;
  std::atomic<int> arrived = 0;
  std::atomic<bool> tooMany = false;
  for (int i = 0; i < 200; ++i) {
    queue.addOperationWithBlock([&] {
      if (++running > 3) tooMany = true;
      ++arrived;
      while (arrived < 3)
        std::this_thread::yield();
      --running;
    });
  }
  ASSERT_TRUE(waitUntilIdle(queue));
  EXPECT_FALSE(tooMany);
}

TEST(NSOperationQueue, ACallerAsABarrierWaitsForWhatRunsAndKeepsTheRestOff) {
  NSOperationQueue queue(2);
  Gate gate;
  std::atomic<bool> firstEnded = false;
  std::atomic<bool> secondRan = false;
  queue.addOperationWithBlock([&] {
    gate.opened.wait();
    firstEnded = true;
  });
  std::thread opener([&] { gate.open(); });
  queue.performAsBarrier([&] {
    EXPECT_TRUE(firstEnded);
    queue.addOperationWithBlock([&] { secondRan = true; });
    EXPECT_EQ(queue.operationCount(), 1U);
    EXPECT_FALSE(secondRan);
  });
  opener.join();
  EXPECT_TRUE(waitFor([&] { return secondRan.load(); }));
}

TEST(NSOperationQueue, NeverRunsWhatWasCancelled) {
  NSOperationQueue queue(1);
  Gate gate;
  std::atomic<bool> hasStarted = false;
  std::atomic<bool> cancelledRan = false;
  std::atomic<bool> laterRan = false;
  queue.addOperationWithBlock([&, wait = gate.block()] {
    hasStarted = true;
    wait();
  });
  queue.addOperationWithBlock([&] { cancelledRan = true; });
  queue.addBarrierBlock([&] { cancelledRan = true; });
  ASSERT_TRUE(waitFor([&] { return hasStarted.load(); }));
  EXPECT_EQ(queue.operationCount(), 3U);
  queue.cancelAllOperations();
  EXPECT_EQ(queue.operationCount(), 1U);
  queue.addOperationWithBlock([&] { laterRan = true; });
  gate.open();
  ASSERT_TRUE(waitUntilIdle(queue));
  EXPECT_TRUE(laterRan);
  EXPECT_FALSE(cancelledRan);
}

TEST(NSOperationQueue, LetsABarrierRunAlone) {
  NSOperationQueue queue(4);
  std::atomic<int> running = 0;
  std::atomic<int> ended = 0;
  const auto block = [&] {
    ++running;
    std::this_thread::sleep_for(2ms);
    ++ended;
    --running;
  };
  for (int i = 0; i < 10; ++i)
    queue.addOperationWithBlock(block);
  queue.addBarrierBlock([&] {
    EXPECT_EQ(ended, 10);
    std::this_thread::sleep_for(5ms);
    EXPECT_EQ(running, 0);
    EXPECT_EQ(ended, 10);
  });
  for (int i = 0; i < 10; ++i)
    queue.addOperationWithBlock(block);
  ASSERT_TRUE(waitUntilIdle(queue));
  EXPECT_EQ(ended, 20);
}

TEST(NSOperationQueue, ACallerWorksBesideBlocksButNotBesideABarrier) {
  NSOperationQueue queue(2);
  std::atomic<bool> barrierRan = false;
  std::promise<void> blockRan;
  queue.performBesideOperations([&] {
    queue.addOperationWithBlock([&] { blockRan.set_value(); });
    queue.addBarrierBlock([&] { barrierRan = true; });
    blockRan.get_future().wait();
    ASSERT_TRUE(waitFor([&] { return queue.operationCount() == 1; }));
    EXPECT_FALSE(barrierRan);
  });
  EXPECT_TRUE(waitFor([&] { return barrierRan.load(); }));

  std::atomic<bool> barrierStarted = false;
  std::atomic<bool> barrierEnded = false;
  queue.addBarrierBlock([&] {
    barrierStarted = true;
    std::this_thread::sleep_for(5ms);
    barrierEnded = true;
  });
  ASSERT_TRUE(waitFor([&] { return barrierStarted.load(); }));
  queue.performBesideOperations([&] { EXPECT_TRUE(barrierEnded); });
}

TEST(NSOperationQueue, LetsTheCallerWorkAlone) {
  NSOperationQueue queue(2);
  std::atomic<int> running = 0;
  const auto busy = [&] {
    ++running;
    std::this_thread::sleep_for(1ms);
    --running;
  };
  // Callers of either kind among blocks and barriers: one that is to work alone does so, and all that waits gets its
  // turn afterwards.
  std::atomic<int> seen = 0;
  std::atomic<int> turns = 0;
  std::vector<std::thread> callers;
  for (int caller = 0; caller < 3; ++caller) {
    callers.emplace_back([&] {
      for (int round = 0; round < 20; ++round) {
        queue.addOperationWithBlock(busy);
        queue.addBarrierBlock([&] {
          seen += running;
          ++turns;
        });
        queue.performBesideOperations(busy);
        queue.performAsBarrier([&] {
          seen += running++;
          std::this_thread::yield();
          seen += --running;
          ++turns;
        });
      }
    });
  }
  for (std::thread& caller : callers)
    caller.join();
  ASSERT_TRUE(waitUntilIdle(queue));
  EXPECT_EQ(seen, 0);
  EXPECT_EQ(turns, 120);
}

TEST(NSOperationQueue, NeedsNoThreadWhileIdle) {
  // A sanitizer starts a thread of its own beside the first one.
  std::thread([] {}).join();
  const auto before = threadsOfProcess();
  std::vector<std::unique_ptr<NSOperationQueue>> queues;
  for (int i = 0; i < 1000; ++i)
    queues.push_back(std::make_unique<NSOperationQueue>(2));
  EXPECT_LE(threadsOfProcess(), before);
  std::atomic<int> ran = 0;
  for (const auto& queue : queues)
    queue->addOperationWithBlock([&ran] { ++ran; });
  EXPECT_TRUE(waitFor([&] { return ran == 1000; }));
  EXPECT_TRUE(waitFor([&] { return threadsOfProcess() <= before; }));
}

TEST(NSOperationQueue, MayBeDestroyedByItsOwnLastBlock) {
  for (int round = 0; round < 50; ++round) {
    std::promise<void> isGone;
    {
      auto queue = std::make_shared<NSOperationQueue>(2);
      auto telltale = std::shared_ptr<void>(nullptr, [&isGone](void*) { isGone.set_value(); });
      queue->addOperationWithBlock([queue, telltale] { std::this_thread::yield(); });
    }
    isGone.get_future().wait();
  }
}

TEST(NSOperationQueue, DropsWhatWaitsWhenDestroyed) {
  std::atomic<bool> ran = false;
  std::promise<void> ended;
  Gate gate;
  {
    NSOperationQueue queue(1);
    queue.addOperationWithBlock([&, wait = gate.block()] {
      wait();
      ended.set_value();
    });
    queue.addOperationWithBlock([&] { ran = true; });
  }
  gate.open();
  ended.get_future().wait();
  EXPECT_FALSE(ran);
}

TEST(NSOperationQueue, LetsTheProcessExitWhileBlocksRun) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto exitBusily = [] {
    auto& queues = immortal<std::vector<std::unique_ptr<NSOperationQueue>>>();
    for (int i = 0; i < 8; ++i) {
      queues.push_back(std::make_unique<NSOperationQueue>(2));
      queues.back()->addOperationWithBlock([] {
        while (true)
          NSOperationQueue::mainQueue().addOperationWithBlock([] {});
      });
    }
    std::this_thread::sleep_for(20ms);
    std::exit(0);
  };
  EXPECT_EXIT(exitBusily(), testing::ExitedWithCode(0), "");
}

TEST(MainQueue, RunsBlocksInOrderAndNeverInPlace) {
  MainQueue queue;
  std::string order;
  queue.addOperationWithBlock([&] {
    order += "a";
    queue.addOperationWithBlock([&] { order += "c"; });
    // As an alert's loop does.
    EXPECT_FALSE(queue.drain());
    order += "A";
  });
  queue.addOperationWithBlock([&] { order += "b"; });
  EXPECT_EQ(order, "");
  EXPECT_TRUE(queue.drain());
  EXPECT_EQ(order, "aAbc");
  EXPECT_FALSE(queue.drain());
}

TEST(MainQueue, WakesItsLoopAtEachPost) {
  MainQueue queue;
  std::atomic<int> wakes = 0;
  queue.setWaker([&] { ++wakes; });
  std::vector<std::thread> threads;
  std::atomic<int> ran = 0;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int block = 0; block < 250; ++block)
        queue.addOperationWithBlock([&] { ++ran; });
    });
  }
  while (ran < 1000) {
    queue.waitForBlocks(std::chrono::steady_clock::now() + 20s);
    queue.drain();
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(wakes, 1000);
  queue.setWaker(nullptr);
  queue.addOperationWithBlock([] {});
  EXPECT_EQ(wakes, 1000);
}

}  // namespace
}  // namespace tarn
