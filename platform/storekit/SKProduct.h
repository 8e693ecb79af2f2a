#pragma once

#include <string>
#include <vector>

namespace tarn {

// Something that the platform's store sells. Its name and price are the store's own.
struct SKProduct {
  std::string productIdentifier;
};

struct SKProductsResponse {
  std::vector<SKProduct> products;
};

// Why the store could not do what it was asked.
struct SKError {
  // A sentence for the user, in their language.
  std::string localizedDescription;
};

}  // namespace tarn
