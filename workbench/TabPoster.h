#pragma once

#include "platform/foundation/NSOperationQueue.h"

#include <memory>
#include <utility>

namespace tarn {

// The way back from a background block to its tab, which it holds weakly. Blocks copy it; any thread.
class TabPoster final {
public:
  explicit TabPoster(std::weak_ptr<void> tab) : tab_(std::move(tab)) {}

  // Posts `step` to the main queue. It is skipped if the tab has gone by then; else the tab, and so whatever part of it
  // the step points at, stays until it has run.
  template <class Step>
  void post(Step step) const {
    NSOperationQueue::mainQueue().addOperationWithBlock([tab = tab_, step = std::move(step)]() mutable {
      if (const std::shared_ptr<void> alive = tab.lock()) step();
    });
  }

private:
  std::weak_ptr<void> tab_;
};

}  // namespace tarn
