#pragma once

#include "platform/storekit/SKProduct.h"

#include <memory>
#include <set>
#include <string>

namespace tarn {

class SKProductsRequestDelegate {
public:
  virtual ~SKProductsRequestDelegate() = default;
  virtual void productsRequestDidReceiveResponse(const SKProductsResponse& response) = 0;
  // Behind the response.
  virtual void requestDidFinish() = 0;
  // In place of both.
  virtual void requestDidFailWithError(const SKError& error) = 0;
};

// Asks the store which of these products it sells. Without a store it fails, and the error says so. Main thread only;
// the delegate is notified on the main queue, never in start(), and no more once the request has gone.
class SKProductsRequest final {
public:
  explicit SKProductsRequest(std::set<std::string> productIdentifiers);

  // The delegate outlives the request.
  void setDelegate(SKProductsRequestDelegate* delegate) { *delegate_ = delegate; }
  void start();

private:
  const std::set<std::string> productIdentifiers_;
  // What is under way holds it weakly.
  const std::shared_ptr<SKProductsRequestDelegate*> delegate_ = std::make_shared<SKProductsRequestDelegate*>(nullptr);
};

}  // namespace tarn
