#include "platform/storekit/SKProductsRequest.h"

#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/storekit/SKStore.h"

#include <utility>
#include <variant>

namespace tarn {

namespace {

void notify(SKProductsRequestDelegate& delegate, const SKStore::Answer& answer) {
  if (const auto* error = std::get_if<SKError>(&answer)) {
    delegate.requestDidFailWithError(*error);
    return;
  }
  delegate.productsRequestDidReceiveResponse(std::get<SKProductsResponse>(answer));
  delegate.requestDidFinish();
}

}  // namespace

SKProductsRequest::SKProductsRequest(std::set<std::string> productIdentifiers)
    : productIdentifiers_(std::move(productIdentifiers)) {}

void SKProductsRequest::start() {
  const std::weak_ptr<SKProductsRequestDelegate*> weakDelegate = delegate_;
  const auto done = [weakDelegate](SKStore::Answer answer) {
    NSOperationQueue::mainQueue().addOperationWithBlock([weakDelegate, answer = std::move(answer)] {
      if (const auto delegate = weakDelegate.lock(); delegate && *delegate) notify(**delegate, answer);
    });
  };
  if (SKStore* const store = SKStore::installed()) {
    store->requestProducts(productIdentifiers_, done);
  } else {
    done(SKError{localizedString("Tips can not be paid here: this platform has no store.")});
  }
}

}  // namespace tarn
