#include "platform/storekit/SKPaymentQueue.h"

#include <gtest/gtest.h>

namespace tarn::test {
namespace {

struct Listener final : SKPaymentTransactionObserver {
  void paymentQueueUpdatedTransactions(const std::vector<SKPaymentTransaction>& transactions) override {
    heard += transactions.front().transactionIdentifier + ' ';
    if (leaves) SKPaymentQueue::defaultQueue().removeTransactionObserver(leaves);
  }

  std::string heard;
  SKPaymentTransactionObserver* leaves = nullptr;
};

TEST(SKPaymentQueue, NotifiesEachObserverOnceAndMayLoseOneMeanwhile) {
  Listener first;
  Listener second;
  SKPaymentQueue& queue = SKPaymentQueue::defaultQueue();
  for (Listener* observer : {&first, &second, &first})
    queue.addTransactionObserver(observer);
  queue.updateTransactions({{"1", SKPaymentTransaction::State::purchased}});
  first.leaves = &second;
  queue.updateTransactions({{"2", SKPaymentTransaction::State::failed}});
  EXPECT_EQ(first.heard, "1 2 ");
  EXPECT_EQ(second.heard, "1 ");
  queue.removeTransactionObserver(&first);
}

}  // namespace
}  // namespace tarn::test
