#pragma once

#include "platform/foundation/NSRunLoop.h"

#include <atomic>
#include <functional>
#include <memory>

namespace tarn {

// A timer of the main run loop. The loop holds it until it has fired its last time or is invalidated; whoever only
// wants one shot need not keep it. Main thread only, except invalidate(), which any thread may call.
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
  bool isValid() const;

private:
  friend class NSRunLoop;

  std::atomic<bool> isValid_ = true;
};

}  // namespace tarn
