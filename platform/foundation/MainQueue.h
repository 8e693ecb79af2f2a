#pragma once

#include <deque>
#include <functional>
#include <mutex>

namespace tarn {

// The serial queue that the whole interface runs on. Blocks run one at a time, in the order posted, on the main
// thread, and never inside one another: while a block shows an alert, the blocks behind it wait.
class MainQueue final {
public:
  using Block = std::function<void()>;

  MainQueue() = default;
  MainQueue(const MainQueue&) = delete;
  MainQueue& operator=(const MainQueue&) = delete;

  // Any thread. Never runs the block in place.
  void addOperationWithBlock(Block block);

  // Main thread; the event loop calls it. Runs what has been posted, also by these blocks themselves, until nothing
  // waits. Does nothing while a block is running. True if any block ran.
  bool drain();

  // Main thread. True while a block runs.
  bool isRunningBlock() const;

  // Called on the posting thread after each post, so that a sleeping event loop wakes up and drains.
  void setWaker(std::function<void()> wake);

private:
  mutable std::mutex mutex_;
  std::deque<Block> blocks_;
  std::function<void()> wake_;
  bool running_ = false;
};

}  // namespace tarn
