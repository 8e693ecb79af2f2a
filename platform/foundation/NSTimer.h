#pragma once

#include <functional>
#include <memory>

#include "platform/foundation/NSRunLoop.h"

namespace tarn {

// A timer of the main run loop. The loop holds it until it has fired its last time or is invalidated; whoever only
// wants one shot need not keep it. Main thread only, except invalidate(), which any thread may call.
class NSTimer final : public std::enable_shared_from_this<NSTimer> {
public:
  using Block = std::function<void()>;

  static std::shared_ptr<NSTimer> scheduledTimerWithTimeInterval(double seconds, bool repeats, Block block);

  NSTimer(const NSTimer&) = delete;
  NSTimer& operator=(const NSTimer&) = delete;

  // The timer never fires again.
  void invalidate();
  bool isValid() const;

private:
  friend class NSRunLoop;
  NSTimer() = default;
};

}  // namespace tarn
