#pragma once

#include <string>
#include <string_view>

class QWidget;

namespace tarn {

// A rectangle in points: the parent's coordinates, y downwards.
struct NSRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

// Our name for one widget of the toolkit. The widget belongs to its window; the wrapper to the layout that made both,
// and there is exactly one wrapper a widget. All of this folder is main thread only.
class NSView {
public:
  explicit NSView(QWidget* widget);
  NSView(const NSView&) = delete;
  NSView& operator=(const NSView&) = delete;
  virtual ~NSView();

  // As set, whatever the parents' state is.
  bool isHidden() const;
  void setHidden(bool hidden);

  NSRect frame() const;

  std::string toolTip() const;
  void setToolTip(std::string_view text);

  // Places the subviews now instead of at the next turn of the event loop.
  void layout();

  // Gives the keyboard focus to the view; does nothing to a control that is under edit already.
  void becomeFirstResponder();
  bool isFirstResponder() const;

  // For this folder, the layouts and tests.
  QWidget* widget() const { return widget_; }

private:
  QWidget* widget_;
};

}  // namespace tarn
