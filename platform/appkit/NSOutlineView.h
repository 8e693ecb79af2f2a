#pragma once

#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSView.h"
#include "platform/foundation/NSObject.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class NSMenu;

// What one row of the tree shows.
struct NSOutlineCell {
  NSImage image;  // none by default
  std::string text;
  std::string toolTip;
};

using NSItem = std::shared_ptr<NSObject>;

// Asked in expand and reload only, never while painting. The null item stands for the invisible top.
class NSOutlineViewDataSource {
public:
  virtual ~NSOutlineViewDataSource() = default;
  virtual int numberOfChildrenOfItem(const NSItem& item) = 0;
  virtual NSItem childOfItem(int index, const NSItem& item) = 0;
  virtual bool isItemExpandable(const NSItem& item) = 0;
};

class NSOutlineViewDelegate {
public:
  virtual ~NSOutlineViewDelegate() = default;

  virtual NSOutlineCell viewForItem(const NSItem& item) = 0;
  virtual bool shouldShowOutlineCellForItem(const NSItem& item) = 0;
  // Asked for the user's triangle or arrow key only.
  virtual bool shouldExpandItem(const NSItem& item) = 0;
  // Asked at each click, also on a selected row, and at keyboard moves; not at the second press of a double click, not
  // when Ctrl deselects, never by code. With Shift the row under the pointer is asked about, not those between.
  virtual bool shouldSelectItem(const NSItem& item) = 0;
};

// A tree of items, which it holds strongly. Its root row stands 16 points further left. Several rows may be selected;
// the selection is kept by item when row numbers shift. Expanding and collapsing by code don't ask the delegate.
// Collapsing drops the selected children and does not select the parent. An item without children stays expanded. A
// double click doesn't expand; a right click changes nothing but opens the menu.
class NSOutlineView final : public NSView {
public:
  // In points.
  static constexpr int rowHeight = 24;

  explicit NSOutlineView(QWidget* widget);
  ~NSOutlineView() override;

  void setDataSource(NSOutlineViewDataSource* source);
  void setDelegate(NSOutlineViewDelegate* delegate);
  void setMenu(std::shared_ptr<NSMenu> menu);
  // Shown below the rows while the root has no children.
  void setPlaceholderString(std::string_view text);

  // Both keep what is expanded and what is selected.
  void reloadData();
  void reloadItem(const NSItem& item, bool reloadChildren = false);

  void expandItem(const NSItem& item);
  void collapseItem(const NSItem& item);

  int numberOfRows() const;
  NSItem itemAtRow(int row) const;
  // -1 where the item isn't in sight.
  int rowForItem(const NSItem& item) const;

  // In ascending order.
  std::vector<int> selectedRowIndexes() const;
  // These rows alone; numbers beyond the rows are left out.
  void selectRowIndexes(const std::vector<int>& rows);

private:
  struct Private;
  std::unique_ptr<Private> d_;
};

}  // namespace tarn
