#include "platform/foundation/NSRunLoop.h"

#include "platform/foundation/Immortal.h"
#include "platform/foundation/NSTimer.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tarn {

NSRunLoop::ModalSession::ModalSession() {
  ++mainRunLoop().modalSessions_;
}

NSRunLoop::ModalSession::~ModalSession() {
  NSRunLoop& loop = mainRunLoop();
  if (--loop.modalSessions_ == 0) loop.notifyScheduleChanged();
}

NSRunLoop& NSRunLoop::mainRunLoop() {
  return immortal<NSRunLoop>();
}

std::optional<NSRunLoop::Clock::time_point> NSRunLoop::nextFireDate() const {
  if (modalSessions_ > 0) return std::nullopt;
  const MutexLock lock(mutex_);
  if (timers_.empty()) return std::nullopt;
  return timers_.begin()->first;
}

void NSRunLoop::fireTimers() {
  // Those due now are taken first, so that a timer that blocks schedule or that is due again waits for the next time.
  std::vector<std::shared_ptr<NSTimer>> due;
  {
    const MutexLock lock(mutex_);
    const auto end = timers_.upper_bound(Clock::now());
    for (auto it = timers_.begin(); it != end; ++it)
      due.push_back(it->second.timer);
  }
  for (const auto& timer : due) {
    if (modalSessions_ > 0) return;
    fire(timer);
  }
}

void NSRunLoop::setScheduleChanged(std::function<void()> changed) {
  changed_ = std::move(changed);
}

void NSRunLoop::schedule(Entry entry, Clock::time_point when) {
  {
    const MutexLock lock(mutex_);
    if (!entry.timer->isValid_) return;
    timers_.emplace(when, std::move(entry));
  }
  notifyScheduleChanged();
}

void NSRunLoop::unschedule(NSTimer& timer) {
  // What the timer's block holds is let go of without the lock.
  Entry dropped;
  const MutexLock lock(mutex_);
  timer.isValid_ = false;
  const auto it = find(timer);
  if (it == timers_.end()) return;
  dropped = std::move(it->second);
  timers_.erase(it);
}

NSRunLoop::Timers::iterator NSRunLoop::find(const NSTimer& timer) {
  return std::find_if(timers_.begin(), timers_.end(),
                      [&timer](const auto& scheduled) { return scheduled.second.timer.get() == &timer; });
}

void NSRunLoop::fire(const std::shared_ptr<NSTimer>& timer) {
  Entry entry;
  Clock::time_point when;
  {
    const MutexLock lock(mutex_);
    const auto it = find(*timer);
    if (it == timers_.end()) return;
    when = it->first;
    entry = std::move(it->second);
    timers_.erase(it);
    if (!entry.repeats) timer->isValid_ = false;
  }
  (*entry.block)();
  if (!entry.repeats) return;
  // The first of its times that is still to come: those missed are over.
  const auto missed = (std::max(Clock::now(), when) - when) / entry.interval;
  const auto next = when + (missed + 1) * entry.interval;
  schedule(std::move(entry), next);
}

void NSRunLoop::notifyScheduleChanged() const {
  if (changed_) changed_();
}

}  // namespace tarn
