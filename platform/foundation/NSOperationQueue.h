#pragma once

#include "platform/foundation/MainQueue.h"

#include <cstddef>
#include <functional>
#include <memory>

namespace tarn {

// Runs blocks on background threads, at most `maxConcurrentOperationCount` at once, starting them in the order added.
// Threads are made on demand and end when idle. The queue may be destroyed at any time, also by its own last block:
// blocks that have not started are then dropped, running ones end by themselves. While the system refuses a thread,
// what was added waits. All operations may be called from any thread.
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

  // Both run the block on the calling thread, which none of the queue's blocks may wait for, and return when it has
  // ended. It is no operation of the queue, so it isn't counted, and waits for none that hasn't started. The first
  // waits for a barrier that runs, and no other starts before it has ended; the second is such a barrier itself: it
  // waits for all that runs, and nothing starts before it has ended.
  void performBesideOperations(const Block& block);
  void performAsBarrier(const Block& block);

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
