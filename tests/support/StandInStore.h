#pragma once

#include "platform/storekit/SKStore.h"

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarn::test {

// The platform's store while it lives: it answers when the test says so, and keeps what it was asked.
class StandInStore final : public SKStore {
public:
  StandInStore() { SKStore::install(this); }
  StandInStore(const StandInStore&) = delete;
  StandInStore& operator=(const StandInStore&) = delete;
  ~StandInStore() override { SKStore::install(nullptr); }

  void requestProducts(const std::set<std::string>& identifiers, std::function<void(Answer)> done) override {
    requested = identifiers;
    answer = std::move(done);
  }
  void addPayment(const SKMutablePayment& payment) override { payments.push_back(payment.productIdentifier()); }
  void finishTransaction(const SKPaymentTransaction& transaction) override {
    finished.push_back(transaction.transactionIdentifier);
  }

  std::set<std::string> requested;
  std::function<void(Answer)> answer;
  std::vector<std::string> payments;
  std::vector<std::string> finished;
};

}  // namespace tarn::test
