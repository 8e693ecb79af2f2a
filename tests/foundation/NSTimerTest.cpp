#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/NSRunLoop.h"
#include "platform/foundation/NSTimer.h"
#include "tests/support/AlertRecorder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace tarn {
namespace {

using namespace std::chrono_literals;

NSRunLoop& loop() {
  return NSRunLoop::mainRunLoop();
}

TEST(NSTimer, FiresOnceOrUntilInvalidated) {
  int shots = 0;
  int ticks = 0;
  const auto once = NSTimer::scheduledTimerWithTimeInterval(0.001, false, [&] { ++shots; });
  auto repeating = std::shared_ptr<NSTimer>();
  repeating = NSTimer::scheduledTimerWithTimeInterval(0.001, true, [&] {
    if (++ticks == 3) repeating->invalidate();
  });
  EXPECT_EQ(shots, 0);
  EXPECT_TRUE(loop().runUntil([&] { return ticks == 3; }, 20s));
  EXPECT_FALSE(loop().runUntil([&] { return ticks > 3; }, 10ms));
  EXPECT_EQ(shots, 1);
  EXPECT_FALSE(once->isValid());
  EXPECT_FALSE(repeating->isValid());
  EXPECT_FALSE(loop().nextFireDate());
}

TEST(NSTimer, FiresInTheOrderOfItsTimesAlsoAgainstEachOther) {
  std::string order;
  NSTimer::scheduledTimerWithTimeInterval(0.002, false, [&] { order += "b"; });
  const auto never = NSTimer::scheduledTimerWithTimeInterval(0.003, false, [&] { order += "x"; });
  NSTimer::scheduledTimerWithTimeInterval(0.001, false, [&] {
    order += "a";
    never->invalidate();
  });
  NSTimer::scheduledTimerWithTimeInterval(0.004, false, [&] { order += "c"; });
  std::this_thread::sleep_for(6ms);
  loop().fireTimers();
  EXPECT_EQ(order, "abc");
}

TEST(NSTimer, WaitsBehindAModalSessionAndThenFiresOnce) {
  int ticks = 0;
  const auto timer = NSTimer::scheduledTimerWithTimeInterval(0.05, true, [&] { ++ticks; });
  int told = 0;
  loop().setScheduleChanged([&] { ++told; });
  {
    const NSRunLoop::ModalSession outer;
    { const NSRunLoop::ModalSession inner; }
    std::this_thread::sleep_for(170ms);
    EXPECT_FALSE(loop().nextFireDate());
    loop().fireTimers();
    EXPECT_EQ(ticks, 0);
    EXPECT_EQ(told, 0);
  }
  EXPECT_EQ(told, 1);
  const auto due = loop().nextFireDate();
  ASSERT_TRUE(due);
  EXPECT_LE(*due, NSRunLoop::Clock::now());
  loop().fireTimers();
  loop().fireTimers();
  EXPECT_EQ(ticks, 1);
  ASSERT_TRUE(loop().nextFireDate());
  EXPECT_GT(*loop().nextFireDate(), *due + 100ms);
  loop().setScheduleChanged(nullptr);
  timer->invalidate();
}

TEST(NSTimer, HoldsTheOthersBackWhileOneOfThemAsks) {
  std::string order;
  NSTimer::scheduledTimerWithTimeInterval(0.001, false, [&] {
    const NSRunLoop::ModalSession alert;
    loop().fireTimers();
    order += "alert ";
  });
  NSTimer::scheduledTimerWithTimeInterval(0.002, false, [&] { order += "second "; });
  EXPECT_TRUE(loop().runUntil([&] { return order.ends_with("second "); }, 20s));
  EXPECT_EQ(order, "alert second ");
}

TEST(NSTimer, MayBeInvalidatedByAnyThreadAndLetsItsBlockGo) {
  for (int round = 0; round < 50; ++round) {
    std::atomic<int> ticks = 0;
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = held;
    const auto timer = NSTimer::scheduledTimerWithTimeInterval(0.0005, true, [&ticks, held] { ++ticks; });
    held.reset();
    std::atomic<bool> isInvalid = false;
    std::thread other([&] {
      while (ticks < 2)
        std::this_thread::yield();
      timer->invalidate();
      isInvalid = true;
    });
    EXPECT_TRUE(loop().runUntil([&] { return isInvalid.load(); }, 20s));
    other.join();
    const int after = ticks;
    loop().runUntil([] { return false; }, 3ms);
    EXPECT_EQ(ticks, after);
    EXPECT_TRUE(watched.expired());
  }
  EXPECT_FALSE(loop().nextFireDate());
}

TEST(NSAlert, IsAnsweredByItsPresenterElseByItsFirstButton) {
  NSAlert alert;
  alert.setMessageText("message");
  alert.addButtonWithTitle("Keep");
  alert.addButtonWithTitle("Cancel");
  {
    test::AlertRecorder recorder;
    recorder.answerNext(NSAlert::secondButtonReturn);
    EXPECT_EQ(alert.runModal(), 1001);
    ASSERT_EQ(recorder.shown().size(), 1U);
    EXPECT_EQ(recorder.shown()[0].buttons.size(), 2U);
  }
  testing::internal::CaptureStdout();
  EXPECT_EQ(alert.runModal(), 1000);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "message\n");
}

}  // namespace
}  // namespace tarn
