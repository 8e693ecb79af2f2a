#include "wire/BareAlert.h"

#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSOperationQueue.h"

#include <utility>

namespace tarn {

void showBareAlert(std::string message) {
  NSOperationQueue::mainQueue().addOperationWithBlock([message = std::move(message)] { showAlert(message); });
}

}  // namespace tarn
