#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSViewController.h"
#include "platform/appkit/tabs/TabBarWidget.h"
#include "platform/appkit/tabs/TabViewWidget.h"
#include "tests/appkit/Steps.h"

namespace tarn::test {
namespace {

struct Page final : QLineEdit {
  using QLineEdit::QLineEdit;
  void paintEvent(QPaintEvent* event) override { ++painted, QLineEdit::paintEvent(event); }
  void hideEvent(QHideEvent*) override { ++hidden; }

  int painted = 0;
  int hidden = 0;
};

struct PageController final : NSViewController {
  explicit PageController(const std::string& text) : page(new Page(QString::fromStdString(text))), pageView(page) {}
  ~PageController() override {
    if (page) page->deleteLater();
  }
  NSView& view() override { return pageView; }

  QPointer<Page> page;
  NSView pageView;
};

struct ShrinkingItem final : NSTabViewItem {
  double sizeOfLabel(bool computeMin) const override { return computeMin ? 0 : NSTabViewItem::sizeOfLabel(false); }
};

class TabView : public Steps {
protected:
  TabView() {
    Steps::show(widget);
    verbs["add"] = [this](auto& label) { tabs.addTabViewItem(item(label)); };
    verbs["remove"] = [this](auto& label) { tabs.removeTabViewItem(item(label)); };
    verbs["select"] = [this](auto& label) { tabs.selectTabViewItem(item(label)); };
    verbs["click"] = [this](auto& label) { click(bar, bar.tabRect(tabs.indexOfTabViewItem(item(label))).center()); };
    verbs["edit"] = [this](auto& label) { page(label).setFocus(); };
  }
  ~TabView() override { widget.setParent(nullptr); }

  std::shared_ptr<NSTabViewItem> item(const std::string& label) {
    const auto [known, isNew] = items.try_emplace(label, std::make_shared<ShrinkingItem>());
    if (isNew) known->second->setLabel(label);
    if (isNew) known->second->setViewController(std::make_shared<PageController>(label));
    return known->second;
  }
  Page& page(const std::string& label) { return *static_cast<PageController&>(*item(label)->viewController()).page; }
  void removeAllAndAddAllBut(const std::string& but) {
    const auto all = tabs.tabViewItems();
    for (const auto& item : all)
      tabs.removeTabViewItem(item);
    for (const auto& item : all)
      if (item->label() != but) tabs.addTabViewItem(item);
  }
  // The labels, the selected one in brackets, whose page alone is in sight, with a star where that has the keyboard.
  std::string shown() override {
    std::string labels;
    const auto selected = tabs.selectedTabViewItem();
    for (const auto& item : tabs.tabViewItems())
      labels += item != selected ? item->label() : "[" + item->label() + (page(item->label()).hasFocus() ? "*]" : "]");
    for (const auto& [label, item] : items)
      EXPECT_EQ(page(label).isVisible(), item == selected) << label;
    return labels + (bar.hasFocus() ? " bar" : "");
  }

  TabViewWidget widget;
  TabBarWidget& bar = widget.bar();
  NSTabView tabs{&widget};
  std::map<std::string, std::shared_ptr<NSTabViewItem>> items;
};

}  // namespace

TEST_F(TabView, SelectsTheFirstAddedWhatIsClickedAndWhatTakesARemovedOnesPlace) {
  // clang-format off
  run({{"add 1; add 2; add 3", "", "[1]23"},
       {"edit 1; click 1", "", "[1*]23"},
       {"key Shift+Backtab Right", "", "1[2]3 bar"},
       {"click 1; click 2", "", "1[2]3 bar"},
       {"remove 2; remove 2", "", "1[3] bar"},
       {"add 2; select 2; select 9; remove 1", "", "3[2] bar"},
       {"remove 2", "", "[3] bar"},
       {"remove 3", "", " bar"}});
  // clang-format on
}

TEST_F(TabView, KeepsEachViewsStateAndPaintsNothingWhenAllAreRemovedAndAddedAgain) {
  run({{"add one; add two; add three; select two; edit two", "", "one[two*]three"}});
  page("two").setSelection(1, 2);
  page("one").painted = page("two").painted = page("two").hidden = 0;
  removeAllAndAddAllBut("");
  tabs.selectTabViewItemAtIndex(1);
  EXPECT_EQ(page("one").painted + page("two").painted, 0);
  run({{"", "", "one[two*]three"}});
  EXPECT_EQ(page("one").painted + page("two").hidden, 0);
  EXPECT_EQ(page("two").selectedText(), "wo");
  // A view and its controller may go in their own action.
  const QPointer<QWidget> closed = &page("two");
  QObject::connect(&page("two"), &QLineEdit::returnPressed, [&] {
    removeAllAndAddAllBut("two");
    items.erase("two");
    tabs.selectTabViewItemAtIndex(1);
  });
  run({{"key Return", "", "one[three]"}});
  EXPECT_EQ(closed, nullptr);
}

TEST_F(TabView, NarrowsManyTabsScrollsWhenThatIsNotEnoughAndShowsTextsAsTheyAre) {
  for (int count = 1; count <= 40; ++count) {
    tabs.addTabViewItem(item("a connection of a long name " + std::to_string(count)));
    settle();
    EXPECT_TRUE(count != 6 || bar.tabRect(5).right() <= widget.width());
  }
  tabs.selectTabViewItemAtIndex(39);
  settle();
  EXPECT_TRUE(bar.rect().intersects(bar.tabRect(39)) && bar.width() <= widget.width());
  EXPECT_GE(bar.tabRect(39).width(), 24);
  tabs.tabViewItems()[39]->setLabel("Q&A");
  tabs.tabViewItems()[39]->setToolTip("<b> & so on");
  EXPECT_EQ(bar.tabText(39), "Q&&A");
  EXPECT_TRUE(toolTipOf(bar, bar.tabRect(39).center()).contains(QStringLiteral("&lt;b&gt; &amp; so on")));
}

}  // namespace tarn::test
