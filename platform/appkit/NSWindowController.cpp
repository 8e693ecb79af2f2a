#include "platform/appkit/NSWindowController.h"

#include <utility>

namespace tarn {

NSWindowController::NSWindowController(std::shared_ptr<NSViewController> content, NSWindow& window,
                                       std::function<void()> willClose)
    : content_(std::move(content)), window_(window), willClose_(std::move(willClose)) {
  window_.setDelegate(this);
}

NSWindowController::~NSWindowController() {
  window_.setDelegate(nullptr);
}

bool NSWindowController::windowShouldClose() {
  if (willClose_) willClose_();
  return true;
}

}  // namespace tarn
