#include "platform/appkit/NSOutlineView.h"

#include "platform/appkit/Utf8.h"
#include "platform/appkit/outline/OutlineViewWidget.h"

#include <QPointer>

namespace tarn {

struct NSOutlineView::Private final : OutlineViewClient {
  explicit Private(QWidget* view) : widget(static_cast<OutlineViewWidget*>(view)) { widget->setClient(this); }

  ~Private() override {
    if (!widget) return;
    widget->setClient(nullptr);
    widget->items().setDataSource(nullptr);
    widget->items().setDelegate(nullptr);
  }

  bool shouldExpand(const NSItem& item) override { return !delegate || delegate->shouldExpandItem(item); }
  bool shouldSelect(const NSItem& item) override { return !delegate || delegate->shouldSelectItem(item); }

  QPointer<OutlineViewWidget> widget;
  NSOutlineViewDelegate* delegate = nullptr;
};

NSOutlineView::NSOutlineView(QWidget* widget) : NSView(widget), d_(std::make_unique<Private>(widget)) {}

NSOutlineView::~NSOutlineView() = default;

void NSOutlineView::setDataSource(NSOutlineViewDataSource* source) {
  d_->widget->items().setDataSource(source);
}

void NSOutlineView::setDelegate(NSOutlineViewDelegate* delegate) {
  d_->delegate = delegate;
  d_->widget->items().setDelegate(delegate);
}

void NSOutlineView::setMenu(std::shared_ptr<NSMenu> menu) {
  d_->widget->setMenu(std::move(menu));
}

void NSOutlineView::setPlaceholderString(std::string_view text) {
  d_->widget->setPlaceholder(toQString(text));
}

void NSOutlineView::reloadData() {
  d_->widget->items().reloadAll();
}

void NSOutlineView::reloadItem(const NSItem& item, bool reloadChildren) {
  if (item) {
    d_->widget->items().reload(item, reloadChildren);
  } else {
    reloadData();
  }
}

void NSOutlineView::expandItem(const NSItem& item) {
  d_->widget->expandItem(item);
}

void NSOutlineView::collapseItem(const NSItem& item) {
  d_->widget->collapseItem(item);
}

int NSOutlineView::numberOfRows() const {
  return d_->widget->items().shownRowCount();
}

NSItem NSOutlineView::itemAtRow(int row) const {
  return d_->widget->items().itemAtRow(row);
}

int NSOutlineView::rowForItem(const NSItem& item) const {
  return d_->widget->items().rowForItem(item);
}

std::vector<int> NSOutlineView::selectedRowIndexes() const {
  return d_->widget->selectedRows();
}

void NSOutlineView::selectRowIndexes(const std::vector<int>& rows) {
  d_->widget->selectRows(rows);
}

}  // namespace tarn
