#pragma once

#include <memory>

namespace tarn {

class NSView;

// Where the keyboard is in a window when this is made: the control, in a text its caret and selection, in a table the
// open cell. Main thread.
class FocusKeeper final {
public:
  // Of the window that the view lies in.
  explicit FocusKeeper(const NSView& view);
  FocusKeeper(const FocusKeeper&) = delete;
  FocusKeeper& operator=(const FocusKeeper&) = delete;
  ~FocusKeeper();

  // Gives the keyboard back, as far as what had it is still there.
  void restore() const;

private:
  struct Private;
  std::unique_ptr<Private> d_;
};

}  // namespace tarn
