#include "favourites/StoreHost.h"

namespace tarn {

namespace {

StoreHost* installedHost = nullptr;

}  // namespace

StoreHost* StoreHost::installed() {
  return installedHost;
}

void StoreHost::install(StoreHost* host) {
  installedHost = host;
}

}  // namespace tarn
