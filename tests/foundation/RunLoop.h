#pragma once

#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/NSRunLoop.h"

#include <chrono>
#include <functional>
#include <thread>

namespace tarn::test {

// The main loop without a toolkit: drains the main queue and fires timers until `done`. False if that never comes.
inline bool runUntil(const std::function<bool()>& done) {
  using Clock = NSRunLoop::Clock;
  const auto end = Clock::now() + std::chrono::seconds(20);
  while (!done()) {
    if (Clock::now() > end) return false;
    NSOperationQueue::mainQueue().drain();
    NSRunLoop::mainRunLoop().fireTimers();
    std::this_thread::yield();
  }
  return true;
}

}  // namespace tarn::test
