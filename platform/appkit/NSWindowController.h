#pragma once

#include "platform/appkit/NSViewController.h"
#include "platform/appkit/NSWindow.h"

#include <functional>
#include <memory>
#include <utility>

namespace tarn {

// Shows one window beside the main one, whose content it owns, and lets the user close it. Main thread only.
class NSWindowController : public NSWindowDelegate {
public:
  // `window` belongs to `content`. `willClose` is called when the user closes the window, by its button or Escape; it
  // may take the controller away, once the current event has been handled.
  NSWindowController(std::shared_ptr<NSViewController> content, NSWindow& window, std::function<void()> willClose = {});
  NSWindowController(const NSWindowController&) = delete;
  NSWindowController& operator=(const NSWindowController&) = delete;
  ~NSWindowController() override;

  NSWindow& window() { return window_; }
  // In front, with the keyboard.
  void showWindow() { window_.makeKeyAndOrderFront(); }

  bool windowShouldClose() override;
  void windowDidResize() override {}

private:
  const std::shared_ptr<NSViewController> content_;
  NSWindow& window_;
  const std::function<void()> willClose_;
};

// The same with the content's own type, which has the window.
template <class Content>
class WindowControllerOf final : public NSWindowController {
public:
  explicit WindowControllerOf(std::shared_ptr<Content> content, std::function<void()> willClose = {})
      : NSWindowController(content, content->window(), std::move(willClose)), content_(*content) {}

  Content& content() { return content_; }

private:
  Content& content_;
};

}  // namespace tarn
