#include "platform/foundation/NSOperationQueue.h"

#include "platform/foundation/Immortal.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/Mutex.h"
#include "platform/foundation/NSTimer.h"

#include <condition_variable>
#include <deque>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace tarn {

// What the queue and its threads share; a thread keeps it alive when the queue is gone. A thread exists only while it
// has an operation: it is made with one, takes the next that may start when that has ended, and else ends.
struct NSOperationQueue::State : std::enable_shared_from_this<State> {
  struct Operation {
    Block block;
    bool isBarrier = false;
  };

  explicit State(std::size_t maxConcurrent) : maxConcurrent(maxConcurrent) {}

  void add(Operation operation) {
    const MutexLock lock(mutex);
    waiting.push_back(std::move(operation));
    startThreads();
  }

  // The next operation, marked as running, if one may start now.
  std::optional<Operation> takeStartable() REQUIRES(mutex) {
    if (waiting.empty() || barrierRuns || callersAsBarrier > 0 || running >= maxConcurrent) return std::nullopt;
    if (waiting.front().isBarrier && running + callersBeside > 0) return std::nullopt;
    Operation operation = std::move(waiting.front());
    waiting.pop_front();
    barrierRuns = operation.isBarrier;
    ++running;
    return operation;
  }

  // One thread for each operation that may start now.
  void startThreads() REQUIRES(mutex) {
    while (auto operation = takeStartable()) {
      auto shared = std::make_shared<Operation>(std::move(*operation));
      try {
        std::thread([self = shared_from_this(), shared]() mutable { self->runFrom(std::move(*shared)); }).detach();
      } catch (const std::system_error&) {
        logLine("no thread for an operation");
        --running;
        barrierRuns = false;
        waiting.push_front(std::move(*shared));
        // One that runs takes it on at its end.
        if (running == 0) startThreadsLater();
        return;
      }
    }
  }

  // A timer is made by the main thread alone.
  void startThreadsLater() {
    static constexpr double pauseInSeconds = 0.1;
    mainQueue().addOperationWithBlock([weak = weak_from_this()] {
      NSTimer::scheduledTimerWithTimeInterval(pauseInSeconds, false, [weak] {
        const auto self = weak.lock();
        if (!self) return;
        const MutexLock lock(self->mutex);
        self->startThreads();
      });
    });
  }

  void runFrom(Operation first) {
    for (std::optional<Operation> operation = std::move(first); operation;) {
      operation->block();
      // What the block holds goes before the operation counts as ended, and not under the lock: it may be the queue.
      operation.reset();
      const MutexLock lock(mutex);
      --running;
      barrierRuns = false;
      ended.notify_all();
      operation = takeStartable();
      startThreads();
    }
  }

  void performBeside(const Block& block) {
    MutexLock lock(mutex);
    while (barrierRuns || callersAsBarrier > 0)
      ended.wait(lock);
    ++callersBeside;
    lock.unlock();
    block();
    lock.lock();
    --callersBeside;
    ended.notify_all();
    startThreads();
  }

  void performAsBarrier(const Block& block) {
    MutexLock lock(mutex);
    ++callersAsBarrier;
    while (barrierRuns || running + callersBeside > 0)
      ended.wait(lock);
    barrierRuns = true;
    lock.unlock();
    block();
    lock.lock();
    barrierRuns = false;
    --callersAsBarrier;
    ended.notify_all();
    startThreads();
  }

  void cancelWaiting() {
    std::deque<Operation> cancelled;
    const MutexLock lock(mutex);
    cancelled.swap(waiting);
  }

  const std::size_t maxConcurrent;
  mutable Mutex mutex;
  std::deque<Operation> waiting GUARDED_BY(mutex);
  std::size_t running GUARDED_BY(mutex) = 0;
  bool barrierRuns GUARDED_BY(mutex) = false;
  // Threads from outside that run a block between the queue's own, or wait for their turn.
  std::size_t callersBeside GUARDED_BY(mutex) = 0;
  std::size_t callersAsBarrier GUARDED_BY(mutex) = 0;
  std::condition_variable_any ended;
};

NSOperationQueue::NSOperationQueue(std::size_t maxConcurrentOperationCount)
    : state_(std::make_shared<State>(maxConcurrentOperationCount)) {}

NSOperationQueue::~NSOperationQueue() {
  state_->cancelWaiting();
}

void NSOperationQueue::addOperationWithBlock(Block block) {
  state_->add({std::move(block), false});
}

void NSOperationQueue::addBarrierBlock(Block block) {
  state_->add({std::move(block), true});
}

void NSOperationQueue::performBesideOperations(const Block& block) {
  const auto state = state_;
  state->performBeside(block);
}

void NSOperationQueue::performAsBarrier(const Block& block) {
  const auto state = state_;
  state->performAsBarrier(block);
}

std::size_t NSOperationQueue::operationCount() const {
  const MutexLock lock(state_->mutex);
  return state_->waiting.size() + state_->running;
}

void NSOperationQueue::cancelAllOperations() {
  state_->cancelWaiting();
}

MainQueue& NSOperationQueue::mainQueue() {
  return immortal<MainQueue>();
}

}  // namespace tarn
