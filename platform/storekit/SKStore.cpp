#include "platform/storekit/SKStore.h"

namespace tarn {

namespace {

SKStore* installedStore = nullptr;

}  // namespace

SKStore* SKStore::installed() {
  return installedStore;
}

void SKStore::install(SKStore* store) {
  installedStore = store;
}

}  // namespace tarn
