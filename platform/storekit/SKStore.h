#pragma once

#include "platform/foundation/InstalledHost.h"
#include "platform/storekit/SKPayment.h"
#include "platform/storekit/SKProduct.h"

#include <functional>
#include <set>
#include <string>
#include <variant>

namespace tarn {

// A store that sells for money. A platform that has one installs it, and so does a test; none is installed by default.
// Main thread only.
class SKStore : public InstalledHost<SKStore> {
public:
  using Answer = std::variant<SKProductsResponse, SKError>;

  virtual ~SKStore() = default;

  // Calls `done` once, now or later: with those of the products that it sells, or with why it can't.
  virtual void requestProducts(const std::set<std::string>& identifiers, std::function<void(Answer)> done) = 0;
  // What becomes of the payment is reported to SKPaymentQueue::updateTransactions.
  virtual void addPayment(const SKMutablePayment& payment) = 0;
  // The program has done its part of the transaction: it isn't reported again.
  virtual void finishTransaction(const SKPaymentTransaction& transaction) = 0;
};

}  // namespace tarn
