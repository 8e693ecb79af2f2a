#pragma once

#include "platform/appkit/NSView.h"

#include <functional>
#include <string>
#include <string_view>

namespace tarn {

// A view with a text and an action.
class NSControl : public NSView {
public:
  using Action = std::function<void()>;
  using NSView::NSView;

  virtual std::string stringValue() const = 0;
  virtual void setStringValue(std::string_view text) = 0;

  // Sent for what the user does; never for a change by code.
  void setAction(Action action) { action_ = std::move(action); }

  int tag() const { return tag_; }
  void setTag(int tag) { tag_ = tag; }

protected:
  // Holds the action alive while it runs: it may take the control away.
  void sendAction() const {
    if (const Action action = action_) action();
  }

private:
  Action action_;
  int tag_ = 0;
};

}  // namespace tarn
