#pragma once

#include "platform/storekit/SKPayment.h"

#include <vector>

namespace tarn {

class SKPaymentTransactionObserver {
public:
  virtual ~SKPaymentTransactionObserver() = default;
  virtual void paymentQueueUpdatedTransactions(const std::vector<SKPaymentTransaction>& transactions) = 0;
};

// The payments on their way between the program and the store. Without a store nothing comes of them. Main thread only.
class SKPaymentQueue final {
public:
  SKPaymentQueue() = default;
  SKPaymentQueue(const SKPaymentQueue&) = delete;
  SKPaymentQueue& operator=(const SKPaymentQueue&) = delete;

  static SKPaymentQueue& defaultQueue();

  void addPayment(const SKMutablePayment& payment);
  void finishTransaction(const SKPaymentTransaction& transaction);

  // Each observer is notified once, however often it was added; it removes itself before it goes.
  void addTransactionObserver(SKPaymentTransactionObserver* observer);
  void removeTransactionObserver(SKPaymentTransactionObserver* observer);

  // For the store: notifies the observers.
  void updateTransactions(const std::vector<SKPaymentTransaction>& transactions);

private:
  std::vector<SKPaymentTransactionObserver*> observers_;
};

}  // namespace tarn
