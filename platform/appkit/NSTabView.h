#pragma once

#include "platform/appkit/NSView.h"

#include <memory>
#include <string>
#include <vector>

namespace tarn {

class NSViewController;

// One tab: a label, a tool tip, a view and that view's controller, which the tab holds. The label is white, at the
// right, in the system's font of 12 points; where it doesn't fit it loses its beginning.
class NSTabViewItem {
public:
  NSTabViewItem();
  NSTabViewItem(const NSTabViewItem&) = delete;
  NSTabViewItem& operator=(const NSTabViewItem&) = delete;
  virtual ~NSTabViewItem();

  const std::string& label() const { return label_; }
  void setLabel(std::string label);
  const std::string& toolTip() const { return toolTip_; }
  void setToolTip(std::string text);

  std::shared_ptr<NSViewController> viewController() const { return controller_; }
  // Before the item is added to a tab view.
  void setViewController(std::shared_ptr<NSViewController> controller);

  // The width of the label in points: with `computeMin` the least that it may be cut to, else what it asks for.
  virtual double sizeOfLabel(bool computeMin) const;

private:
  std::string label_;
  std::string toolTip_;
  std::shared_ptr<NSViewController> controller_;
  class NSTabView* tabView_ = nullptr;
  friend class NSTabView;
};

// The tabs of the window. Removing the selected tab selects the one that takes its place, else the last; adding to an
// empty view selects. Removing and adding all again within one event keeps each view's state and paints nothing
// between. A view and its controller may go away in their own action.
class NSTabView final : public NSView {
public:
  explicit NSTabView(QWidget* widget);
  ~NSTabView() override;

  void addTabViewItem(std::shared_ptr<NSTabViewItem> item);
  void removeTabViewItem(const std::shared_ptr<NSTabViewItem>& item);
  void selectTabViewItem(const std::shared_ptr<NSTabViewItem>& item);
  void selectTabViewItemAtIndex(int index);
  std::shared_ptr<NSTabViewItem> selectedTabViewItem() const;
  // -1 if the item isn't here.
  int indexOfTabViewItem(const std::shared_ptr<NSTabViewItem>& item) const;
  const std::vector<std::shared_ptr<NSTabViewItem>>& tabViewItems() const;

private:
  friend class NSTabViewItem;
  void itemChanged(const NSTabViewItem& item);

  struct Private;
  std::unique_ptr<Private> d_;
};

}  // namespace tarn
