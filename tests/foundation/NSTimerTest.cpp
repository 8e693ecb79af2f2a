#include "platform/foundation/NSTimer.h"
#include "tests/foundation/RunLoop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>

namespace tarn::test {
namespace {

using namespace std::chrono_literals;
using Clock = NSRunLoop::Clock;

NSRunLoop& loop() {
  return NSRunLoop::mainRunLoop();
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
  int changes = 0;
  loop().setScheduleChanged([&] { ++changes; });
  const auto due = loop().nextFireDate();
  ASSERT_TRUE(due);
  holdBackUntil(*due + 12ms);
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(ticks, 0);
  EXPECT_EQ(loop().nextFireDate(), due);
  loop().fireTimers();
  EXPECT_EQ(ticks, 1);
  EXPECT_EQ(changes, 2);
  const auto next = loop().nextFireDate();
  ASSERT_TRUE(next);
  EXPECT_GE(*next, *due + 15ms);
  EXPECT_EQ((*next - *due) % 5ms, 0ms);
  EXPECT_TRUE(runUntil([&] { return ticks == 2; }));
  EXPECT_FALSE(loop().nextFireDate());
  loop().setScheduleChanged(nullptr);
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
