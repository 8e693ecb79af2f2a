#pragma once

#include "platform/appkit/NSActivityBar.h"
#include "platform/foundation/NSTimer.h"
#include "workbench/TabPoster.h"

#include <memory>

namespace tarn {

// Moves the tab's activity bar while work that somebody asked for lasts longer than a moment. Main queue only, but for
// the tokens.
class QueueActivity final {
public:
  explicit QueueActivity(NSActivityBar& bar) : bar_(bar) {}
  ~QueueActivity();
  QueueActivity(const QueueActivity&) = delete;
  QueueActivity& operator=(const QueueActivity&) = delete;

  // Counts as work until its last copy goes, on whatever thread: a block holds one, so that one that is cancelled ends
  // its work too.
  std::shared_ptr<void> beginWork(const TabPoster& tab);

private:
  void endWork();

  NSActivityBar& bar_;
  int working_ = 0;
  std::shared_ptr<NSTimer> delay_;
};

}  // namespace tarn
