#include "platform/foundation/MainQueue.h"

#include <utility>

namespace tarn {

void MainQueue::addOperationWithBlock(Block block) {
  {
    const std::lock_guard lock(mutex_);
    blocks_.push_back(std::move(block));
  }
  posted_.notify_one();
  const std::lock_guard lock(wakeMutex_);
  if (wake_) wake_();
}

bool MainQueue::drain() {
  if (running_) return false;
  running_ = true;
  bool ranAny = false;
  while (true) {
    Block block;
    {
      const std::lock_guard lock(mutex_);
      if (blocks_.empty()) break;
      block = std::move(blocks_.front());
      blocks_.pop_front();
    }
    block();
    ranAny = true;
  }
  running_ = false;
  return ranAny;
}

void MainQueue::waitForBlocks(std::chrono::steady_clock::time_point limit) {
  std::unique_lock lock(mutex_);
  posted_.wait_until(lock, limit, [this] { return !running_ && !blocks_.empty(); });
}

void MainQueue::setWaker(std::function<void()> wake) {
  const std::lock_guard lock(wakeMutex_);
  wake_ = std::move(wake);
}

}  // namespace tarn
