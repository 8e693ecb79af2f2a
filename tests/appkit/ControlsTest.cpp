#include "platform/appkit/ActivityBarWidget.h"
#include "platform/appkit/MenuBuilding.h"
#include "platform/appkit/NSActivityBar.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSMenu.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSWindow.h"
#include "tests/support/widgets/Hand.h"

#include <gtest/gtest.h>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include <memory>

namespace tarn::test {
namespace {

class Controls : public testing::Test {
protected:
  Controls() {
    auto* layout = new QVBoxLayout(&window);
    for (QWidget* widget : std::initializer_list<QWidget*>{edit, pushed, checked, box})
      layout->addWidget(widget);
    show(window, {300, 240});
    edit->setFocus();
  }

  QWidget window;
  QLineEdit* edit = new QLineEdit;
  QPushButton* pushed = new QPushButton("Push");
  QCheckBox* checked = new QCheckBox("Check");
  QComboBox* box = new QComboBox;
  int actions = 0;
};

TEST_F(Controls, TakeTheFocusByTabAndNotByAClick) {
  NSButton button(pushed);
  NSButton check(checked);
  NSPopUpButton popUp(box);
  popUp.addItemsWithTitles({"a", "b"});
  click(*pushed);
  click(*checked, QPoint(8, checked->height() / 2));
  choose(*box, 1);
  EXPECT_TRUE(edit->hasFocus());
  EXPECT_TRUE(check.state());
  EXPECT_EQ(popUp.stringValue(), "b");

  for (QWidget* next : std::initializer_list<QWidget*>{pushed, checked, box}) {
    press(Qt::Key_Tab);
    EXPECT_TRUE(next->hasFocus());
  }
}

TEST_F(Controls, ButtonSendsItsActionForAHandOnly) {
  NSButton check(checked);
  check.setAction([&] { ++actions; });
  check.setState(true);
  EXPECT_EQ(actions, 0);
  click(*checked, QPoint(8, checked->height() / 2));
  EXPECT_EQ(actions, 1);
  EXPECT_FALSE(check.state());
  check.performClick();
  EXPECT_EQ(actions, 2);

  check.setStringValue("Search & find");
  EXPECT_EQ(check.stringValue(), "Search & find");
}

TEST_F(Controls, ButtonMayGoInItsOwnAction) {
  auto button = std::make_unique<NSButton>(pushed);
  button->setAction([&] {
    button.reset();
    pushed->deleteLater();
    ++actions;
  });
  click(*pushed);
  EXPECT_EQ(actions, 1);
}

TEST_F(Controls, PopUpTellsWhatAHandChoseAlsoTheSameAgain) {
  NSPopUpButton popUp(box);
  popUp.setAction([&] { ++actions; });
  popUp.addItemsWithTitles({"db0", "db1", "db2"});
  EXPECT_EQ(popUp.indexOfSelectedItem(), 0);
  popUp.selectItemAtIndex(2);
  popUp.selectItemWithTitle("db1");
  EXPECT_EQ(popUp.titleOfSelectedItem(), "db1");
  EXPECT_EQ(actions, 0);

  choose(*box, 1);
  EXPECT_EQ(actions, 1);
  choose(*box, 2);
  EXPECT_EQ(actions, 2);
  EXPECT_EQ(popUp.titleOfSelectedItem(), "db2");

  // A scroll that strays over it chooses nothing.
  QWheelEvent wheel(QPointF(5, 5), box->mapToGlobal(QPointF(5, 5)), {}, QPoint(0, 120), {}, {}, Qt::NoScrollPhase,
                    false);
  QApplication::sendEvent(box, &wheel);
  EXPECT_EQ(popUp.indexOfSelectedItem(), 2);
}

TEST_F(Controls, PopUpSelectsNoneForWhatItDoesntHold) {
  NSPopUpButton popUp(box);
  popUp.addItemsWithTitles({"utf8", "GBK"});
  for (const int index : {2, -1, 1000}) {
    popUp.selectItemAtIndex(0);
    popUp.selectItemAtIndex(index);
    EXPECT_EQ(popUp.indexOfSelectedItem(), -1);
    EXPECT_EQ(popUp.titleOfSelectedItem(), "");
  }
  popUp.selectItemAtIndex(0);
  popUp.selectItemWithTitle("gbk");
  EXPECT_EQ(popUp.indexOfSelectedItem(), -1);
  popUp.removeAllItems();
  EXPECT_EQ(popUp.titleOfSelectedItem(), "");
  popUp.addItemWithTitle("first");
  EXPECT_EQ(popUp.indexOfSelectedItem(), 0);
}

TEST_F(Controls, AreHiddenAsSetWhateverTheirParentIs) {
  NSView view(pushed);
  EXPECT_FALSE(view.isHidden());
  window.hide();
  EXPECT_FALSE(view.isHidden());
  view.setHidden(true);
  window.show();
  EXPECT_TRUE(view.isHidden());
  EXPECT_FALSE(pushed->isVisible());
}

TEST_F(Controls, LayoutPlacesAHiddenPanesControlsNow) {
  QWidget pane;
  auto* row = new QHBoxLayout(&pane);
  auto* inner = new QWidget;
  auto* innerRow = new QHBoxLayout(inner);
  row->addWidget(inner);
  row->setContentsMargins(0, 0, 0, 0);
  innerRow->setContentsMargins(0, 0, 0, 0);
  auto* deep = new QWidget;
  innerRow->addWidget(deep);
  pane.resize(432, 100);
  NSView(&pane).layout();
  EXPECT_EQ(NSView(deep).frame().width, 432);
}

TEST_F(Controls, ActivityBarDrawsOnlyLongerWork) {
  auto* bar = new ActivityBarWidget;
  window.layout()->addWidget(bar);
  settle();
  const QImage idle = bar->grab().toImage();
  NSActivityBar activity(bar);
  activity.startAnimation();
  EXPECT_TRUE(activity.isAnimating());
  EXPECT_EQ(bar->grab().toImage(), idle);
  EXPECT_TRUE(waitUntil([&] { return bar->grab().toImage() != idle; }));
  activity.stopAnimation();
  EXPECT_FALSE(activity.isAnimating());
  EXPECT_EQ(bar->grab().toImage(), idle);
}

TEST_F(Controls, MenuRunsTheChosenActionWhenItHasGone) {
  NSMenu menu("Rows & columns");
  menu.addItem("Delete", [] {});
  menu.addSeparator();
  menu.addItem("Add & edit", [&] {
    EXPECT_EQ(openPopUp(), nullptr);
    ++actions;
  });
  popUpMenu(menu, *pushed, window.mapToGlobal(QPoint(10, 10)));
  auto* shown = qobject_cast<QMenu*>(openPopUp());
  ASSERT_NE(shown, nullptr);
  click(*shown, shown->actionGeometry(shown->actions().at(2)).center());
  EXPECT_EQ(actions, 1);
}

class WindowTest : public testing::Test, public NSWindowDelegate {
protected:
  bool windowShouldClose() override {
    ++asked;
    return mayClose;
  }
  void windowDidResize() override { ++resized; }

  QMainWindow widget;
  NSWindow window{&widget};
  bool mayClose = false;
  int asked = 0;
  int resized = 0;
};

TEST_F(WindowTest, AsksItsDelegateWhenTheUserClosesItAndNotWhenCodeDoes) {
  window.setDelegate(this);
  window.makeKeyAndOrderFront();
  settle();
  widget.close();
  EXPECT_EQ(asked, 1);
  EXPECT_TRUE(window.isVisible());
  resized = 0;
  widget.resize(640, 480);
  settle();
  EXPECT_EQ(resized, 1);
  window.close();
  EXPECT_EQ(asked, 1);
  EXPECT_FALSE(window.isVisible());
}

TEST_F(WindowTest, OffersItsMenusKeyEquivalents) {
  int quits = 0;
  auto file = std::make_shared<NSMenu>("File");
  file->addItem(
      "Quit", [&] { ++quits; }, "Ctrl+Q");
  auto bar = std::make_shared<NSMenu>("");
  bar->addSubmenu(file);
  window.setMainMenu(bar);
  show(widget, {300, 200});
  press(Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(quits, 1);
}

}  // namespace
}  // namespace tarn::test
