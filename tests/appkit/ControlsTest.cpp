#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSWindow.h"
#include "platform/appkit/text/LabelWidget.h"
#include "platform/appkit/text/TextFieldWidget.h"
#include "tests/appkit/Keys.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWheelEvent>
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
  void clickCheck() { click(*checked, QPoint(8, checked->height() / 2)); }

  QWidget window;
  QLineEdit* edit = new QLineEdit;
  QPushButton* pushed = new QPushButton("Push");
  QCheckBox* checked = new QCheckBox("Check");
  QComboBox* box = new QComboBox;
  int actions = 0;
};

}  // namespace

TEST_F(Controls, TakeTheFocusByTabAndNotByAClick) {
  NSButton button(pushed);
  NSButton check(checked);
  NSPopUpButton popUp(box);
  popUp.addItemsWithTitles({"a", "b"});
  click(*pushed);
  clickCheck();
  choose(*box, 1);
  EXPECT_TRUE(edit->hasFocus());
  EXPECT_TRUE(check.state());
  EXPECT_EQ(popUp.stringValue(), "b");
  for (QWidget* next : std::initializer_list<QWidget*>{pushed, checked, box}) {
    keys("Tab");
    EXPECT_TRUE(next->hasFocus());
  }
}

TEST_F(Controls, ButtonSendsItsActionForTheUserOnlyAndMayGoInIt) {
  NSButton check(checked);
  check.setAction([&] { ++actions; });
  check.setState(true);
  EXPECT_EQ(actions, 0);
  clickCheck();
  EXPECT_EQ(actions, 1);
  EXPECT_FALSE(check.state());
  check.setStringValue("Search & find");
  EXPECT_EQ(check.stringValue(), "Search & find");
  EXPECT_EQ(checked->text(), "Search && find");
  auto button = std::make_unique<NSButton>(pushed);
  button->setAction([&] {
    button.reset();
    pushed->deleteLater();
    ++actions;
  });
  click(*pushed);
  EXPECT_EQ(actions, 2);
}

TEST_F(Controls, PopUpSaysWhatTheUserChoseAndSelectsNoneForWhatItDoesntHold) {
  NSPopUpButton popUp(box);
  popUp.setAction([&] { ++actions; });
  popUp.addItemWithTitle("db0");
  EXPECT_EQ(popUp.indexOfSelectedItem(), 0);
  popUp.addItemsWithTitles({"db1", "db2"});
  popUp.selectItemWithTitle("db1");
  EXPECT_EQ(actions, 0);
  choose(*box, 1);
  choose(*box, 2);
  EXPECT_EQ(actions, 2);
  EXPECT_EQ(popUp.titleOfSelectedItem(), "db2");
  // A scroll that strays over it chooses nothing.
  QWheelEvent wheel(QPointF(5, 5), box->mapToGlobal(QPointF(5, 5)), {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
  QApplication::sendEvent(box, &wheel);
  EXPECT_EQ(popUp.indexOfSelectedItem(), 2);
  for (const auto& select : std::initializer_list<std::function<void()>>{
           [&] { popUp.selectItemAtIndex(3); }, [&] { popUp.selectItemAtIndex(-1); },
           [&] { popUp.selectItemWithTitle("DB1"); }, [&] { popUp.removeAllItems(); }}) {
    popUp.selectItemAtIndex(0);
    select();
    EXPECT_EQ(popUp.indexOfSelectedItem(), -1);
    EXPECT_EQ(popUp.titleOfSelectedItem(), "");
  }
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
    bool windowShouldClose() override { return ++asked < 0; }
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

TEST(ToolTip, OfALabelIsItsOwnOrTheTextThatIsCutAndOfAFieldItsOwn) {
  LabelWidget widget;
  TextFieldWidget fieldWidget;
  NSTextField label(&widget);
  NSTextField field(&fieldWidget);
  show(widget, QSize(200, 60));
  show(fieldWidget, QSize(200, 60));
  label.setStringValue("short");
  field.setStringValue(std::string(500, 'l'));
  EXPECT_EQ(toolTipOf(widget) + toolTipOf(fieldWidget), QString());
  label.setStringValue("<b>" + std::string(50 << 20, 'l') + "</b>");
  EXPECT_TRUE(toolTipOf(widget).contains(QStringLiteral("&lt;b&gt;lll")));
  EXPECT_LT(toolTipOf(widget).size(), 3000);
  EXPECT_FALSE(widget.grab().isNull());
  // A long text never makes its window wider; a short one is never cut.
  EXPECT_LT(widget.minimumSizeHint().width(), 200);
  label.setStringValue("Type: SortedSet");
  EXPECT_EQ(widget.minimumSizeHint(), widget.sizeHint());
  for (NSTextField* one : {&label, &field}) {
    one->setToolTip("its own <i>");
    EXPECT_TRUE(toolTipOf(*one->widget()).contains(QStringLiteral("its own &lt;i&gt;")));
  }
}

}  // namespace tarn::test
