#include "platform/foundation/DisposeInBackground.h"

#include "platform/foundation/Immortal.h"
#include "platform/foundation/NSOperationQueue.h"

namespace tarn {

namespace {

struct DisposalQueue {
  NSOperationQueue queue{1};
};

}  // namespace

void disposeInBackground(std::shared_ptr<void> garbage) {
  immortal<DisposalQueue>().queue.addOperationWithBlock([garbage = std::move(garbage)]() mutable { garbage.reset(); });
}

}  // namespace tarn
