#include "platform/storekit/SKPaymentQueue.h"

#include "platform/foundation/Immortal.h"
#include "platform/storekit/SKStore.h"

#include <algorithm>

namespace tarn {

SKPaymentQueue& SKPaymentQueue::defaultQueue() {
  return immortal<SKPaymentQueue>();
}

void SKPaymentQueue::addPayment(const SKMutablePayment& payment) {
  if (SKStore* const store = SKStore::installed()) store->addPayment(payment);
}

void SKPaymentQueue::finishTransaction(const SKPaymentTransaction& transaction) {
  if (SKStore* const store = SKStore::installed()) store->finishTransaction(transaction);
}

void SKPaymentQueue::addTransactionObserver(SKPaymentTransactionObserver* observer) {
  if (std::ranges::find(observers_, observer) == observers_.end()) observers_.push_back(observer);
}

void SKPaymentQueue::removeTransactionObserver(SKPaymentTransactionObserver* observer) {
  std::erase(observers_, observer);
}

void SKPaymentQueue::updateTransactions(const std::vector<SKPaymentTransaction>& transactions) {
  // Copied, since an observer may remove itself, or another that then isn't notified.
  for (SKPaymentTransactionObserver* const observer : std::vector(observers_)) {
    if (std::ranges::find(observers_, observer) != observers_.end()) {
      observer->paymentQueueUpdatedTransactions(transactions);
    }
  }
}

}  // namespace tarn
