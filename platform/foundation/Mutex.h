#pragma once

#include "platform/foundation/ThreadAnnotations.h"

#include <mutex>

namespace tarn {

// A std::mutex that the compiler knows as a lock: fields are declared GUARDED_BY it. Any thread.
class CAPABILITY("mutex") Mutex final {
public:
  Mutex() = default;
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  void lock() ACQUIRE() { mutex_.lock(); }
  void unlock() RELEASE() { mutex_.unlock(); }

private:
  std::mutex mutex_;
};

// Holds the mutex while it lives, but between unlock() and lock(). Belongs to the thread that made it.
// A std::condition_variable_any waits with it; the condition is then tested in a loop of the caller's, since the
// compiler doesn't see that a predicate is called under the lock.
class SCOPED_CAPABILITY MutexLock final {
public:
  explicit MutexLock(Mutex& mutex) ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;
  ~MutexLock() RELEASE() {
    if (isHeld_) mutex_.unlock();
  }

  void unlock() RELEASE() {
    isHeld_ = false;
    mutex_.unlock();
  }
  void lock() ACQUIRE() {
    mutex_.lock();
    isHeld_ = true;
  }

private:
  Mutex& mutex_;
  bool isHeld_ = true;
};

}  // namespace tarn
