#pragma once

#include "platform/foundation/NSRunLoop.h"

#include <functional>
#include <memory>

namespace tarn {

// A timer of the main run loop. The loop holds it until it has fired its last time or is invalidated, so a timer
// for one shot need not be kept. Main thread only, except invalidate(), which any thread may call.
class NSTimer final {
  struct Key {};

public:
  using Block = std::function<void()>;

  // For scheduledTimerWithTimeInterval alone.
  explicit NSTimer(Key) {}

  static std::shared_ptr<NSTimer> scheduledTimerWithTimeInterval(double seconds, bool repeats, Block block);

  NSTimer(const NSTimer&) = delete;
  NSTimer& operator=(const NSTimer&) = delete;

  // The timer never fires again, and the loop drops its block.
  void invalidate();

private:
  friend class NSRunLoop;

  // Under the lock of the run loop.
  bool isValid_ = true;
};

}  // namespace tarn
