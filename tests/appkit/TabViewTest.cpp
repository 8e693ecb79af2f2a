#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSViewController.h"
#include "platform/appkit/tabs/TabBarWidget.h"
#include "platform/appkit/tabs/TabViewWidget.h"
#include "tests/support/widgets/Hand.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <cmath>

namespace tarn::test {
namespace {

// Counts how often it is painted and hidden.
class Page final : public QWidget {
public:
  explicit Page(const QString& text) : edit(new QLineEdit(text)), close(new QPushButton("Close")) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(edit);
    layout->addWidget(close);
  }

  QLineEdit* edit;
  QPushButton* close;
  int painted = 0;
  int hidden = 0;

protected:
  void paintEvent(QPaintEvent*) override { ++painted; }
  void hideEvent(QHideEvent*) override { ++hidden; }
};

class PageController final : public NSViewController {
public:
  explicit PageController(const QString& text) : page_(new Page(text)), view_(page_) {}
  ~PageController() override {
    if (page_) page_->deleteLater();
  }

  NSView& view() override { return view_; }
  Page& page() { return *page_; }

private:
  QPointer<Page> page_;
  NSView view_;
};

// One whose label may be cut to nothing.
class ShrinkingItem final : public NSTabViewItem {
public:
  double sizeOfLabel(bool computeMin) const override { return computeMin ? 0 : NSTabViewItem::sizeOfLabel(false); }
};

class TabView : public testing::Test {
protected:
  TabView() { show(widget, {600, 400}); }

  std::shared_ptr<NSTabViewItem> add(const std::string& label) {
    auto item = std::make_shared<ShrinkingItem>();
    item->setLabel(label);
    item->setToolTip(label);
    item->setViewController(std::make_shared<PageController>(QString::fromStdString(label)));
    tabs.addTabViewItem(item);
    settle();
    return item;
  }

  static Page& page(const std::shared_ptr<NSTabViewItem>& item) {
    return static_cast<PageController&>(*item->viewController()).page();
  }

  void removeAllAndAddAllBut(const std::shared_ptr<NSTabViewItem>& but) {
    const auto all = tabs.tabViewItems();
    for (const auto& item : all)
      tabs.removeTabViewItem(item);
    for (const auto& item : all) {
      if (item != but) tabs.addTabViewItem(item);
    }
  }

  TabViewWidget widget;
  NSTabView tabs{&widget};
};

TEST_F(TabView, SelectsByClickTheFirstAddedAndWhatTakesARemovedOnesPlace) {
  EXPECT_EQ(tabs.selectedTabViewItem(), nullptr);
  const auto one = add("one");
  const auto two = add("two");
  const auto three = add("three");
  EXPECT_EQ(tabs.selectedTabViewItem(), one);
  EXPECT_TRUE(page(one).isVisible());
  click(widget.bar(), widget.bar().tabRect(1).center());
  EXPECT_EQ(tabs.selectedTabViewItem(), two);
  EXPECT_TRUE(page(two).isVisible());
  EXPECT_FALSE(page(one).isVisible());
  tabs.removeTabViewItem(two);
  EXPECT_EQ(tabs.selectedTabViewItem(), three);
  settle();
  EXPECT_TRUE(page(three).isVisible());
  EXPECT_FALSE(page(two).isVisible());
  tabs.removeTabViewItem(three);
  EXPECT_EQ(tabs.selectedTabViewItem(), one);
  tabs.removeTabViewItem(one);
  EXPECT_EQ(tabs.selectedTabViewItem(), nullptr);
}

TEST_F(TabView, TakesNoFocusByAClickButByTabAndThenArrowsChange) {
  const auto one = add("one");
  const auto two = add("two");
  page(one).edit->setFocus();
  click(widget.bar(), widget.bar().tabRect(0).center());
  EXPECT_TRUE(page(one).edit->hasFocus());
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_TRUE(widget.bar().hasFocus());
  press(Qt::Key_Right);
  EXPECT_EQ(tabs.selectedTabViewItem(), two);
  one->setLabel("Q&A");
  EXPECT_EQ(widget.bar().tabText(0), "Q&&A");
}

TEST_F(TabView, KeepsEachViewsStateWhenAllAreRemovedAndAddedAgain) {
  const auto one = add("one");
  const auto two = add("two");
  tabs.selectTabViewItem(two);
  settle();
  page(two).edit->setFocus();
  page(two).edit->setSelection(1, 2);
  page(two).painted = page(one).painted = page(two).hidden = page(one).hidden = 0;

  removeAllAndAddAllBut(nullptr);
  tabs.selectTabViewItemAtIndex(1);
  EXPECT_EQ(page(one).painted + page(two).painted, 0);
  settle();
  EXPECT_EQ(tabs.selectedTabViewItem(), two);
  EXPECT_EQ(page(two).hidden, 0);
  EXPECT_EQ(page(one).painted, 0);
  EXPECT_TRUE(page(two).edit->hasFocus());
  EXPECT_EQ(page(two).edit->selectedText(), "wo");
}

TEST_F(TabView, LetsAViewAndItsControllerGoInTheirOwnAction) {
  add("one");
  auto two = add("two");
  add("three");
  tabs.selectTabViewItem(two);
  settle();
  const QPointer<QWidget> closed = &page(two);
  QObject::connect(page(two).close, &QPushButton::clicked, [&] {
    removeAllAndAddAllBut(two);
    two.reset();
    tabs.selectTabViewItemAtIndex(1);
  });
  click(*page(two).close);
  EXPECT_EQ(closed, nullptr);
  ASSERT_EQ(tabs.tabViewItems().size(), 2U);
  EXPECT_EQ(tabs.selectedTabViewItem()->label(), "three");
  EXPECT_TRUE(page(tabs.selectedTabViewItem()).isVisible());
}

TEST_F(TabView, NarrowsManyTabsAndScrollsWhenThatIsNotEnough) {
  const auto addUntil = [&](int count) {
    while (int(tabs.tabViewItems().size()) < count)
      add("a connection of a long name");
  };
  addUntil(6);
  EXPECT_LE(widget.bar().tabRect(5).right(), widget.width());
  addUntil(40);
  tabs.selectTabViewItemAtIndex(39);
  settle();
  EXPECT_TRUE(widget.bar().rect().intersects(widget.bar().tabRect(39)));
  EXPECT_GE(widget.bar().tabRect(39).width(), 24);
  EXPECT_LE(widget.bar().width(), widget.width());
}

double luminance(const QColor& color) {
  const auto linear = [](double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

TEST_F(TabView, DrawsWhiteLabelsAtTheRightOnAFillThatCarriesThem) {
  add("W");
  add("other");
  for (const bool dark : {false, true}) {
    useDarkPalette(dark);
    settle();
    const QImage picture = widget.bar().grab().toImage();
    const auto colorAt = [&](int index) {
      const QRect tab = widget.bar().tabRect(index);
      return picture.pixelColor(tab.left() + 5, tab.center().y());
    };
    for (const int index : {0, 1})
      EXPECT_GE(1.05 / (luminance(colorAt(index)) + 0.05), 4.5);
    EXPECT_NE(colorAt(0), colorAt(1));
  }
  useDarkPalette(false);
}

}  // namespace
}  // namespace tarn::test
