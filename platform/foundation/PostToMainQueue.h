#pragma once

#include "platform/foundation/NSOperationQueue.h"

#include <memory>
#include <type_traits>
#include <utility>

namespace tarn {

// Posts `step(owner)` to the main queue, or `step()` for an owner without a type; any thread. It is skipped if the
// owner has gone by then; else the owner, and so whatever part of it the step points at, stays until it has run.
template <class Owner, class Step>
void postToMainQueue(std::weak_ptr<Owner> owner, Step step) {
  NSOperationQueue::mainQueue().addOperationWithBlock([owner = std::move(owner), step = std::move(step)]() mutable {
    const std::shared_ptr<Owner> alive = owner.lock();
    if (!alive) return;
    if constexpr (std::is_void_v<Owner>) {
      step();
    } else {
      step(*alive);
    }
  });
}

// Keeps the object until the current event has been handled: what belongs to it may still be running. Any thread.
inline void releaseOnMainQueue(std::shared_ptr<const void> object) {
  NSOperationQueue::mainQueue().addOperationWithBlock([object = std::move(object)] {});
}

}  // namespace tarn
