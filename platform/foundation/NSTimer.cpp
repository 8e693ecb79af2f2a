#include "platform/foundation/NSTimer.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace tarn {

std::shared_ptr<NSTimer> NSTimer::scheduledTimerWithTimeInterval(double seconds, bool repeats, Block block) {
  // A repeating timer without an interval would be due for ever.
  static constexpr double shortestInterval = 0.0001;
  const std::chrono::duration<double> length(std::max(seconds, shortestInterval));
  const auto interval = std::chrono::duration_cast<NSRunLoop::Clock::duration>(length);
  auto timer = std::make_shared<NSTimer>(Key{});
  NSRunLoop::mainRunLoop().schedule({timer, std::make_shared<const Block>(std::move(block)), interval, repeats},
                                    NSRunLoop::Clock::now() + interval);
  return timer;
}

void NSTimer::invalidate() {
  NSRunLoop::mainRunLoop().unschedule(*this);
}

}  // namespace tarn
