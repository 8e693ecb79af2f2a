#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSViewController.h"
#include "platform/appkit/tabs/TabBarWidget.h"
#include "platform/appkit/tabs/TabViewWidget.h"
#include "tests/appkit/Keys.h"

#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <cmath>

namespace tarn::test {
namespace {

// Counts how often it is painted and hidden.
class Page final : public QWidget {
public:
  explicit Page(const QString& text) : edit(new QLineEdit(text, this)) {}

  QLineEdit* edit;
  int painted = 0;
  int hidden = 0;

protected:
  void paintEvent(QPaintEvent*) override { ++painted; }
  void hideEvent(QHideEvent*) override { ++hidden; }
};

class PageController final : public NSViewController {
public:
  explicit PageController(const QString& text) : page(new Page(text)), view_(page) {}
  ~PageController() override {
    if (page) page->deleteLater();
  }
  NSView& view() override { return view_; }

  QPointer<Page> page;

private:
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
    item->setViewController(std::make_shared<PageController>(QString::fromStdString(label)));
    tabs.addTabViewItem(item);
    settle();
    return item;
  }
  static Page& page(const std::shared_ptr<NSTabViewItem>& item) {
    return *static_cast<PageController&>(*item->viewController()).page;
  }
  void removeAllAndAddAllBut(const std::shared_ptr<NSTabViewItem>& but) {
    const auto all = tabs.tabViewItems();
    for (const auto& item : all)
      tabs.removeTabViewItem(item);
    for (const auto& item : all)
      if (item != but) tabs.addTabViewItem(item);
  }
  // The selected label, whose page alone is in sight.
  std::string selected() {
    settle();
    const auto item = tabs.selectedTabViewItem();
    for (const auto& other : tabs.tabViewItems())
      EXPECT_EQ(page(other).isVisible(), other == item) << other->label();
    return item ? item->label() : "";
  }

  TabViewWidget widget;
  NSTabView tabs{&widget};
};

}  // namespace

TEST_F(TabView, SelectsByClickTheFirstAddedAndWhatTakesARemovedOnesPlace) {
  EXPECT_EQ(selected(), "");
  const auto one = add("one");
  const auto two = add("two");
  const auto three = add("three");
  EXPECT_EQ(selected(), "one");
  click(widget.bar(), widget.bar().tabRect(1).center());
  EXPECT_EQ(selected(), "two");
  tabs.removeTabViewItem(two);
  EXPECT_EQ(selected(), "three");
  EXPECT_FALSE(page(two).isVisible());
  tabs.removeTabViewItem(three);
  EXPECT_EQ(selected(), "one");
  tabs.removeTabViewItem(one);
  EXPECT_EQ(selected(), "");
}

TEST_F(TabView, TakesTheFocusByTabAndNotByAClickAndShowsItsTextsAsTheyAre) {
  const auto one = add("one");
  add("two");
  page(one).edit->setFocus();
  click(widget.bar(), widget.bar().tabRect(0).center());
  EXPECT_TRUE(page(one).edit->hasFocus());
  keys("Shift+Backtab");
  EXPECT_TRUE(widget.bar().hasFocus());
  keys("Right");
  EXPECT_EQ(selected(), "two");
  one->setLabel("Q&A");
  one->setToolTip("<b> & so on");
  EXPECT_EQ(widget.bar().tabText(0), "Q&&A");
  EXPECT_TRUE(
      toolTipOf(widget.bar(), widget.bar().tabRect(0).center()).contains(QStringLiteral("&lt;b&gt; &amp; so on")));
}

TEST_F(TabView, KeepsEachViewsStateWhenAllAreRemovedAndAddedAgain) {
  const auto one = add("one");
  const auto two = add("two");
  tabs.selectTabViewItem(two);
  settle();
  page(two).edit->setFocus();
  page(two).edit->setSelection(1, 2);
  page(two).painted = page(one).painted = page(two).hidden = 0;
  removeAllAndAddAllBut(nullptr);
  tabs.selectTabViewItemAtIndex(1);
  EXPECT_EQ(page(one).painted + page(two).painted, 0);
  EXPECT_EQ(selected(), "two");
  EXPECT_EQ(page(two).hidden + page(one).painted, 0);
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
  QObject::connect(page(two).edit, &QLineEdit::returnPressed, [&] {
    removeAllAndAddAllBut(two);
    two.reset();
    tabs.selectTabViewItemAtIndex(1);
  });
  page(two).edit->setFocus();
  keys("Return");
  EXPECT_EQ(closed, nullptr);
  EXPECT_EQ(selected(), "three");
}

TEST_F(TabView, NarrowsManyTabsAndScrollsWhenThatIsNotEnough) {
  for (int count = 1; count <= 40; ++count) {
    add("a connection of a long name");
    EXPECT_TRUE(count != 6 || widget.bar().tabRect(5).right() <= widget.width());
  }
  tabs.selectTabViewItemAtIndex(39);
  settle();
  EXPECT_TRUE(widget.bar().rect().intersects(widget.bar().tabRect(39)));
  EXPECT_GE(widget.bar().tabRect(39).width(), 24);
  EXPECT_LE(widget.bar().width(), widget.width());
}

TEST_F(TabView, DrawsWhiteLabelsAtTheRightOnAFillThatCarriesThem) {
  const auto luminance = [](const QColor& color) {
    const auto linear = [](double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
  };
  add("W");
  add("other");
  for (const bool dark : {false, true}) {
    useDarkPalette(dark);
    settle();
    const QImage picture = widget.bar().grab().toImage();
    const auto colorAt = [&](int tab) {
      return picture.pixelColor(widget.bar().tabRect(tab).left() + 5, widget.bar().tabRect(tab).center().y());
    };
    for (const int tab : {0, 1})
      EXPECT_GE(1.05 / (luminance(colorAt(tab)) + 0.05), 4.5);
    EXPECT_NE(colorAt(0), colorAt(1));
  }
  useDarkPalette(false);
}

}  // namespace tarn::test
