#include "workbench/WorkbenchHost.h"

namespace tarn {

namespace {

WorkbenchHost* installedHost = nullptr;

}  // namespace

WorkbenchHost* WorkbenchHost::installed() {
  return installedHost;
}

void WorkbenchHost::install(WorkbenchHost* host) {
  installedHost = host;
}

}  // namespace tarn
