#pragma once

#include "platform/foundation/PostToMainQueue.h"

#include <memory>
#include <utility>

namespace tarn {

// The way back from a background block to its tab, which it holds weakly. Blocks copy it; any thread.
class TabPoster final {
public:
  explicit TabPoster(std::weak_ptr<void> tab) : tab_(std::move(tab)) {}

  // As postToMainQueue(), with the tab as owner.
  template <class Step>
  void post(Step step) const {
    postToMainQueue(tab_, std::move(step));
  }

private:
  std::weak_ptr<void> tab_;
};

}  // namespace tarn
