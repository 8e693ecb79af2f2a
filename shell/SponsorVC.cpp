#include "shell/SponsorVC.h"

#include "platform/foundation/Log.h"
#include "platform/foundation/NSAlert.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarn {

namespace {

// In the order of their buttons.
constexpr std::array products{"tarn_sponsor1", "tarn_sponsor2", "tarn_sponsor3", "tarn_sponsor4", "tarn_sponsor5"};

}  // namespace

SponsorVC::SponsorVC() : request_({products.begin(), products.end()}) {
  viewDidLoad();
}

SponsorVC::~SponsorVC() {
  SKPaymentQueue::defaultQueue().removeTransactionObserver(this);
}

void SponsorVC::viewDidLoad() {
  const std::array buttons{&layout_.btnSponsor1, &layout_.btnSponsor2, &layout_.btnSponsor3, &layout_.btnSponsor4,
                           &layout_.btnSponsor5};
  static_assert(buttons.size() == products.size());
  for (std::size_t index = 0; index < products.size(); ++index)
    buttons[index]->setAction([this, identifier = products[index]] { buyProduct(identifier); });
  request_.setDelegate(this);
  request_.start();
}

void SponsorVC::productsRequestDidReceiveResponse(const SKProductsResponse& response) {
  products_ = response.products;
}

void SponsorVC::requestDidFinish() {
  logLine("payment request did finished");
}

void SponsorVC::requestDidFailWithError(const SKError& error) {
  postAlert(error.localizedDescription);
}

void SponsorVC::buyProduct(const std::string& identifier) {
  const auto product = std::ranges::find(products_, identifier, &SKProduct::productIdentifier);
  if (product == products_.end()) return;
  SKPaymentQueue& queue = SKPaymentQueue::defaultQueue();
  queue.addPayment(SKMutablePayment::paymentWithProduct(*product));
  queue.addTransactionObserver(this);
}

void SponsorVC::paymentQueueUpdatedTransactions(const std::vector<SKPaymentTransaction>& transactions) {
  using State = SKPaymentTransaction::State;
  for (const SKPaymentTransaction& transaction : transactions) {
    const State state = transaction.transactionState;
    if (state == State::failed) logLine("error:::::");
    if (state == State::purchased || state == State::restored || state == State::failed) {
      SKPaymentQueue::defaultQueue().finishTransaction(transaction);
    }
  }
}

}  // namespace tarn
