#pragma once

#include "platform/foundation/Mutex.h"

#include <deque>
#include <functional>
#include <utility>

namespace tarn {

// The serial queue that the whole interface runs on. Blocks run one at a time, in the order posted, on the main
// thread, and never inside one another: while a block shows an alert, the blocks behind it wait.
class MainQueue final {
public:
  using Block = std::function<void()>;

  // While one lives no block runs; what waits, or is posted meanwhile, runs afterwards. Main thread.
  class Hold final {
  public:
    explicit Hold(MainQueue& queue) : queue_(queue), wasRunning_(std::exchange(queue.running_, true)) {}
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    ~Hold() {
      queue_.running_ = wasRunning_;
      queue_.wake();
    }

  private:
    MainQueue& queue_;
    const bool wasRunning_;
  };

  MainQueue() = default;
  MainQueue(const MainQueue&) = delete;
  MainQueue& operator=(const MainQueue&) = delete;

  // Any thread. Never runs the block in place.
  void addOperationWithBlock(Block block);

  // Main thread; the event loop calls it. Runs what has been posted, also by these blocks themselves, until nothing
  // waits. Does nothing while a block is running. True if any block ran.
  bool drain();

  // Called on the posting thread after each post, so that a sleeping event loop wakes up and drains. Once this has
  // returned, the waker installed before is not called again, nor running.
  void setWaker(std::function<void()> wake);

private:
  void wake();

  Mutex mutex_;
  std::deque<Block> blocks_ GUARDED_BY(mutex_);
  Mutex wakeMutex_;
  std::function<void()> wake_ GUARDED_BY(wakeMutex_);
  // Main thread.
  bool running_ = false;
};

}  // namespace tarn
