#pragma once

#include <cstddef>
#include <functional>
#include <memory>

#include "platform/foundation/MainQueue.h"

namespace tarn {

// Runs blocks on background threads, at most `maxConcurrentOperationCount` at once, starting them in the order added.
// Threads are made on demand and end when idle. The queue may be destroyed at any time, also by its own last block:
// blocks that have not started are then dropped, running ones end by themselves. All operations may be called from any
// thread.
class NSOperationQueue final {
public:
  using Block = std::function<void()>;

  explicit NSOperationQueue(std::size_t maxConcurrentOperationCount);
  NSOperationQueue(const NSOperationQueue&) = delete;
  NSOperationQueue& operator=(const NSOperationQueue&) = delete;
  ~NSOperationQueue();

  void addOperationWithBlock(Block block);

  // Starts when all blocks added before have ended; none added later starts before it has ended.
  void addBarrierBlock(Block block);

  // What waits and what runs.
  std::size_t operationCount() const;

  // Drops the blocks that have not started. Running ones go on.
  void cancelAllOperations();

  static MainQueue& mainQueue();

private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace tarn
