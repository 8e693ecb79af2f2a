#pragma once

#include "platform/appkit/NSViewController.h"
#include "platform/appkit/NSWindowController.h"
#include "platform/storekit/SKPaymentQueue.h"
#include "platform/storekit/SKProductsRequest.h"
#include "resources/SponsorLayout.h"

#include <string>
#include <vector>

namespace tarn {

// The content of the window with the five tips, each a product of the platform's store. A tip buys nothing, and nothing
// about it is kept. Main thread only.
class SponsorVC final : public NSViewController, public SKProductsRequestDelegate, public SKPaymentTransactionObserver {
public:
  // Asks the store for the products.
  SponsorVC();
  ~SponsorVC() override;

  NSView& view() override { return layout_.window; }
  NSWindow& window() { return layout_.window; }
  // The outlets, by their names.
  SponsorLayout& outlets() { return layout_; }

  void productsRequestDidReceiveResponse(const SKProductsResponse& response) override;
  void requestDidFinish() override;
  void requestDidFailWithError(const SKError& error) override;
  void paymentQueueUpdatedTransactions(const std::vector<SKPaymentTransaction>& transactions) override;

private:
  void viewDidLoad();
  // Nothing happens while the store hasn't offered the product.
  void buyProduct(const std::string& identifier);

  SponsorLayout layout_;
  std::vector<SKProduct> products_;
  SKProductsRequest request_;
};

// The window of the tips.
using SponsorWC = WindowControllerOf<SponsorVC>;

}  // namespace tarn
