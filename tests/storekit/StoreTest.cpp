#include "platform/foundation/NSOperationQueue.h"
#include "platform/storekit/SKPaymentQueue.h"
#include "platform/storekit/SKProductsRequest.h"
#include "tests/support/StandInStore.h"

#include <gtest/gtest.h>

#include <optional>

namespace tarn::test {

namespace {

using Texts = std::vector<std::string>;

struct Listener final : SKProductsRequestDelegate, SKPaymentTransactionObserver {
  void productsRequestDidReceiveResponse(const SKProductsResponse& response) override {
    for (const SKProduct& product : response.products)
      heard.push_back(product.productIdentifier);
  }
  void requestDidFinish() override { heard.push_back("finished"); }
  void requestDidFailWithError(const SKError& error) override { heard.push_back(error.localizedDescription); }
  void paymentQueueUpdatedTransactions(const std::vector<SKPaymentTransaction>& transactions) override {
    for (const SKPaymentTransaction& transaction : transactions)
      heard.push_back(transaction.transactionIdentifier);
    if (leaves) SKPaymentQueue::defaultQueue().removeTransactionObserver(leaves);
  }

  Texts heard;
  SKPaymentTransactionObserver* leaves = nullptr;
};

void drain() {
  NSOperationQueue::mainQueue().drain();
}

}  // namespace

TEST(SKProductsRequest, TellsTheStoresAnswerOnTheMainQueue) {
  StandInStore store;
  Listener listener;
  SKProductsRequest request({"a", "b"});
  request.setDelegate(&listener);
  request.start();
  EXPECT_EQ(store.requested, (std::set<std::string>{"a", "b"}));
  store.answer(SKProductsResponse{{{"b"}}});
  EXPECT_TRUE(listener.heard.empty());
  drain();
  EXPECT_EQ(listener.heard, (Texts{"b", "finished"}));

  request.start();
  store.answer(SKError{"The shop is closed."});
  drain();
  EXPECT_EQ(listener.heard.back(), "The shop is closed.");
}

TEST(SKProductsRequest, FailsWithoutAStoreAndFallsSilentWhenItGoes) {
  Listener listener;
  std::optional<SKProductsRequest> request(std::in_place, std::set<std::string>{"a"});
  request->setDelegate(&listener);
  request->start();
  EXPECT_TRUE(listener.heard.empty());
  drain();
  EXPECT_EQ(listener.heard, Texts{"Tips can not be paid here: this platform has no store."});

  StandInStore store;
  request->start();
  store.answer(SKProductsResponse{{{"a"}}});
  request.reset();
  drain();
  EXPECT_EQ(listener.heard.size(), 1U);
}

TEST(SKPaymentQueue, TellsEachObserverOnceAndMayLoseOneMeanwhile) {
  Listener first;
  Listener second;
  SKPaymentQueue& queue = SKPaymentQueue::defaultQueue();
  for (Listener* observer : {&first, &second, &first})
    queue.addTransactionObserver(observer);
  queue.updateTransactions({{"1", SKPaymentTransaction::State::purchased}});
  first.leaves = &second;
  queue.updateTransactions({{"2", SKPaymentTransaction::State::failed}});
  EXPECT_EQ(first.heard, (Texts{"1", "2"}));
  EXPECT_EQ(second.heard, Texts{"1"});
  queue.removeTransactionObserver(&first);
}

}  // namespace tarn::test
