#include "wire/ServerItemHost.h"

namespace tarn {

namespace {
ServerItemHost* installedHost = nullptr;
}

ServerItemHost* ServerItemHost::installed() {
  return installedHost;
}

void ServerItemHost::install(ServerItemHost* host) {
  installedHost = host;
}

}  // namespace tarn
