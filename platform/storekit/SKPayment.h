#pragma once

#include "platform/storekit/SKProduct.h"

#include <string>
#include <utility>

namespace tarn {

// The wish to buy one piece of a product.
class SKMutablePayment final {
public:
  static SKMutablePayment paymentWithProduct(const SKProduct& product) {
    return SKMutablePayment(product.productIdentifier);
  }

  const std::string& productIdentifier() const { return productIdentifier_; }

private:
  explicit SKMutablePayment(std::string productIdentifier) : productIdentifier_(std::move(productIdentifier)) {}

  std::string productIdentifier_;
};

// What became of a payment. The identifier is the store's.
struct SKPaymentTransaction {
  enum class State { purchasing = 0, purchased = 1, failed = 2, restored = 3, deferred = 4 };

  std::string transactionIdentifier;
  State transactionState = State::purchasing;
};

}  // namespace tarn
