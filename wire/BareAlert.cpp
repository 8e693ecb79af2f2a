#include "wire/BareAlert.h"

#include <utility>

#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSOperationQueue.h"

namespace tarn {

void showBareAlert(std::string message) {
  NSOperationQueue::mainQueue().addOperationWithBlock([message = std::move(message)] { showAlert(message); });
}

}  // namespace tarn
