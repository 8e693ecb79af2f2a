#include "platform/appkit/NSTabView.h"

#include "platform/appkit/NSViewController.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/tabs/TabBarWidget.h"
#include "platform/appkit/tabs/TabViewWidget.h"

#include <QFontMetricsF>

#include <algorithm>
#include <utility>

namespace tarn {

struct NSTabView::Private {
  TabViewWidget* widget;
  std::vector<std::shared_ptr<NSTabViewItem>> items;
  QObject connection;     // its end is the end of the signals
  bool changing = false;  // by code

  TabBarWidget& bar() const { return widget->bar(); }

  QWidget* page(int index) const {
    if (index < 0 || index >= static_cast<int>(items.size())) return nullptr;
    const auto controller = items[static_cast<std::size_t>(index)]->viewController();
    return controller ? controller->view().widget() : nullptr;
  }

  void select(int index) {
    changing = true;
    bar().setCurrentIndex(index);
    changing = false;
    widget->showPage(page(bar().currentIndex()));
  }
};

NSTabView::NSTabView(QWidget* widget) : NSView(widget), d_(std::make_unique<Private>()) {
  d_->widget = static_cast<TabViewWidget*>(widget);
  d_->bar().setItemProvider(
      [this](int index) -> const NSTabViewItem& { return *d_->items[static_cast<std::size_t>(index)]; });
  QObject::connect(&d_->bar(), &QTabBar::currentChanged, &d_->connection, [this](int index) {
    if (!d_->changing) d_->widget->showPage(d_->page(index));
  });
}

NSTabView::~NSTabView() {
  for (const auto& item : d_->items)
    item->tabView_ = nullptr;
}

void NSTabView::addTabViewItem(std::shared_ptr<NSTabViewItem> item) {
  if (indexOfTabViewItem(item) >= 0) return;
  item->tabView_ = this;
  d_->items.push_back(item);
  d_->changing = true;
  // While it isn't on screen the bar doesn't announce its new size.
  const int index = d_->bar().addTab(literalTitle(item->label()));
  d_->changing = false;
  d_->bar().updateGeometry();
  d_->bar().setTabToolTip(index, toQString(item->toolTip()));
  if (QWidget* page = d_->page(index)) d_->widget->addPage(page);
  if (d_->items.size() == 1) d_->select(0);
}

void NSTabView::removeTabViewItem(const std::shared_ptr<NSTabViewItem>& item) {
  const int index = indexOfTabViewItem(item);
  if (index < 0) return;
  // `item` may be the very element that goes.
  const std::shared_ptr<NSTabViewItem> removed = item;
  removed->tabView_ = nullptr;
  QWidget* page = d_->page(index);
  d_->changing = true;
  // While the bar removes a tab it asks for the sizes of all it still has.
  d_->bar().removeTab(index);
  d_->changing = false;
  d_->bar().updateGeometry();
  d_->items.erase(d_->items.begin() + index);
  if (page) d_->widget->removePage(page);
  d_->widget->showPage(d_->page(d_->bar().currentIndex()));
}

void NSTabView::selectTabViewItem(const std::shared_ptr<NSTabViewItem>& item) {
  selectTabViewItemAtIndex(indexOfTabViewItem(item));
}

void NSTabView::selectTabViewItemAtIndex(int index) {
  if (index >= 0 && index < static_cast<int>(d_->items.size())) d_->select(index);
}

std::shared_ptr<NSTabViewItem> NSTabView::selectedTabViewItem() const {
  const int index = d_->bar().currentIndex();
  return index < 0 ? nullptr : d_->items[static_cast<std::size_t>(index)];
}

int NSTabView::indexOfTabViewItem(const std::shared_ptr<NSTabViewItem>& item) const {
  const auto found = std::find(d_->items.begin(), d_->items.end(), item);
  return found == d_->items.end() ? -1 : static_cast<int>(found - d_->items.begin());
}

const std::vector<std::shared_ptr<NSTabViewItem>>& NSTabView::tabViewItems() const {
  return d_->items;
}

void NSTabView::itemChanged(const NSTabViewItem& item) {
  for (std::size_t index = 0; index < d_->items.size(); ++index) {
    if (d_->items[index].get() != &item) continue;
    d_->bar().setTabText(static_cast<int>(index), literalTitle(item.label()));
    d_->bar().setTabToolTip(static_cast<int>(index), toQString(item.toolTip()));
  }
}

NSTabViewItem::NSTabViewItem() = default;
NSTabViewItem::~NSTabViewItem() = default;

void NSTabViewItem::setLabel(std::string label) {
  label_ = std::move(label);
  if (tabView_) tabView_->itemChanged(*this);
}

void NSTabViewItem::setToolTip(std::string text) {
  toolTip_ = std::move(text);
  if (tabView_) tabView_->itemChanged(*this);
}

void NSTabViewItem::setViewController(std::shared_ptr<NSViewController> controller) {
  controller_ = std::move(controller);
}

double NSTabViewItem::sizeOfLabel(bool) const {
  return QFontMetricsF(TabBarWidget::labelFont()).horizontalAdvance(toQString(label_));
}

}  // namespace tarn
