#include "workbench/QueueActivity.h"

namespace tarn {

namespace {

constexpr double secondsBeforeItShows = 0.3;

// Tells its activity, on the main queue, that the work has ended.
template <class End>
class WorkToken final {
public:
  WorkToken(TabPoster tab, End end) : tab_(std::move(tab)), end_(std::move(end)) {}
  WorkToken(const WorkToken&) = delete;
  WorkToken& operator=(const WorkToken&) = delete;
  ~WorkToken() { tab_.post(end_); }

private:
  TabPoster tab_;
  End end_;
};

}  // namespace

QueueActivity::~QueueActivity() {
  if (delay_) delay_->invalidate();
}

std::shared_ptr<void> QueueActivity::beginWork(const TabPoster& tab) {
  if (++working_ == 1) {
    delay_ = NSTimer::scheduledTimerWithTimeInterval(secondsBeforeItShows, false, [this] { bar_.startAnimation(); });
  }
  const auto end = [this] { endWork(); };
  return std::make_shared<WorkToken<decltype(end)>>(tab, end);
}

void QueueActivity::endWork() {
  if (--working_ > 0) return;
  delay_->invalidate();
  bar_.stopAnimation();
}

}  // namespace tarn
