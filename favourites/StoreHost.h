#pragma once

#include "platform/foundation/InstalledHost.h"

namespace tarn {

class NSManagedObjectContext;

// What the favourites ask of the program: where their records are. Main thread. With no host installed there are no
// stored favourites, and nothing is saved.
class StoreHost : public InstalledHost<StoreHost> {
public:
  virtual ~StoreHost() = default;

  // The store's main context; the first call opens the store.
  virtual NSManagedObjectContext& context() = 0;
  // Writes the context's changes to the store, and reports a failure by itself.
  virtual void saveContext() = 0;
};

}  // namespace tarn
