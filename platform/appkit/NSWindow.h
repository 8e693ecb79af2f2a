#pragma once

#include "platform/appkit/NSView.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

class NSMenu;

class NSWindowDelegate {
public:
  virtual ~NSWindowDelegate() = default;
  // The user asks to close the window. False keeps it.
  virtual bool windowShouldClose() = 0;
  virtual void windowDidResize() = 0;
};

// A top-level window. The widget belongs to the layout that made it.
class NSWindow final : public NSView {
public:
  explicit NSWindow(QWidget* widget);
  ~NSWindow() override;

  void setTitle(std::string_view title);
  void setDelegate(NSWindowDelegate* delegate);
  void setMainMenu(std::shared_ptr<NSMenu> menu);

  // Shows the window, in front and with the keyboard, also where another program is in front.
  void makeKeyAndOrderFront();
  void close();

private:
  struct Private;
  std::unique_ptr<Private> d_;
};

}  // namespace tarn
