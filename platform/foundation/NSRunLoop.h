#pragma once

#include "platform/foundation/Mutex.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace tarn {

class NSTimer;

// The main thread's loop, seen without a toolkit: which timers are due, and whether timers may fire now. A toolkit's
// event loop hosts it: it sleeps no longer than `nextFireDate` and calls `fireTimers`. Main thread only.
class NSRunLoop final {
public:
  using Clock = std::chrono::steady_clock;

  // While one lives, an alert is up or a menu is open: no timer fires. A repeating timer that missed its times fires
  // once afterwards.
  class ModalSession final {
  public:
    ModalSession();
    ModalSession(const ModalSession&) = delete;
    ModalSession& operator=(const ModalSession&) = delete;
    ~ModalSession();
  };

  static NSRunLoop& mainRunLoop();

  // When the next timer wants to fire; nothing while no timer is scheduled or a modal session holds them all back.
  std::optional<Clock::time_point> nextFireDate() const;

  // Fires each timer that is due, once.
  void fireTimers();

  // Called when `nextFireDate` may have become earlier, so that the host can set its alarm anew.
  void setScheduleChanged(std::function<void()> changed);

private:
  friend class NSTimer;

  struct Entry {
    std::shared_ptr<NSTimer> timer;
    std::shared_ptr<const std::function<void()>> block;
    Clock::duration interval{};
    bool repeats = false;
  };
  using Timers = std::multimap<Clock::time_point, Entry>;

  void schedule(Entry entry, Clock::time_point when);
  // Any thread.
  void unschedule(NSTimer& timer);
  Timers::iterator find(const NSTimer& timer) REQUIRES(mutex_);
  void fire(const std::shared_ptr<NSTimer>& timer);
  void notifyScheduleChanged() const;

  // A timer may be invalidated by any thread.
  mutable Mutex mutex_;
  Timers timers_ GUARDED_BY(mutex_);
  std::function<void()> changed_;
  int modalSessions_ = 0;
};

}  // namespace tarn
