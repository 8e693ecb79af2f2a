#include "platform/foundation/MainQueue.h"

#include <utility>

namespace tarn {

void MainQueue::addOperationWithBlock(Block block) {
  {
    const MutexLock lock(mutex_);
    blocks_.push_back(std::move(block));
  }
  wake();
}

void MainQueue::wake() {
  const MutexLock lock(wakeMutex_);
  if (wake_) wake_();
}

bool MainQueue::drain() {
  if (running_) return false;
  running_ = true;
  bool ranAny = false;
  while (true) {
    Block block;
    {
      const MutexLock lock(mutex_);
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

void MainQueue::setWaker(std::function<void()> wake) {
  const MutexLock lock(wakeMutex_);
  wake_ = std::move(wake);
}

}  // namespace tarn
