#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSWindow.h"
#include "tests/support/widgets/Hand.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <functional>
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
  popUp.selectItemWithTitle("db1");
  EXPECT_EQ(actions, 0);
  choose(*box, 1);
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
  for (const auto& select : std::initializer_list<std::function<void()>>{
           [&] { popUp.selectItemAtIndex(2); }, [&] { popUp.selectItemAtIndex(-1); },
           [&] { popUp.selectItemWithTitle("gbk"); }, [&] { popUp.removeAllItems(); }}) {
    popUp.selectItemAtIndex(0);
    select();
    EXPECT_EQ(popUp.indexOfSelectedItem(), -1);
    EXPECT_EQ(popUp.titleOfSelectedItem(), "");
  }
  popUp.addItemWithTitle("first");
  EXPECT_EQ(popUp.indexOfSelectedItem(), 0);
}

TEST_F(Controls, AreHiddenAsSetWhateverTheirParentIs) {
  NSView view(pushed);
  window.hide();
  EXPECT_FALSE(view.isHidden());
  view.setHidden(true);
  window.show();
  EXPECT_TRUE(view.isHidden());
  EXPECT_FALSE(pushed->isVisible());
}

TEST(Window, AsksItsDelegateWhenTheUserClosesItAndNotWhenCodeDoes) {
  struct Refusing final : NSWindowDelegate {
    bool windowShouldClose() override {
      ++asked;
      return false;
    }
    void windowDidResize() override {}
    int asked = 0;
  } delegate;
  QMainWindow widget;
  NSWindow window(&widget);
  window.setDelegate(&delegate);
  window.makeKeyAndOrderFront();
  settle();
  widget.close();
  EXPECT_EQ(delegate.asked, 1);
  EXPECT_TRUE(window.isVisible());
  window.close();
  EXPECT_EQ(delegate.asked, 1);
  EXPECT_FALSE(window.isVisible());
}

}  // namespace
}  // namespace tarn::test
