#pragma once

namespace tarn {

class NSView;

// Owns a view and all that it shows.
class NSViewController {
public:
  NSViewController() = default;
  NSViewController(const NSViewController&) = delete;
  NSViewController& operator=(const NSViewController&) = delete;
  virtual ~NSViewController() = default;

  virtual NSView& view() = 0;

  // Ends the editing in the view's fields, as a change of focus does.
  void commitEditing();
};

}  // namespace tarn
