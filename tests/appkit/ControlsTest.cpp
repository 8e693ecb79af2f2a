#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/text/LabelWidget.h"
#include "platform/appkit/text/TextFieldWidget.h"
#include "tests/appkit/Steps.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QWheelEvent>

namespace tarn::test {
namespace {

// A button, a check box and a pop-up, which say their actions.
class Controls : public Steps {
protected:
  Controls() {
    show(*pushed);
    for (QWidget* widget : std::initializer_list<QWidget*>{checked, box})
      window.layout()->addWidget(widget);
    popUp.addItemWithTitle("db0");
    EXPECT_EQ(popUp.indexOfSelectedItem(), 0);
    popUp.addItemsWithTitles({"db1", "db2"});
    button->setAction([this] { log.add("pushed"); });
    check.setAction([this] { log.add("checked"); });
    popUp.setAction([this] { log.add("chosen"); });
    verbs["push"] = [this](auto&) { click(*pushed); };
    verbs["check"] = [this](auto&) { click(*checked, QPoint(8, checked->height() / 2)); };
    verbs["state"] = [this](auto& on) { check.setState(on == "on"); };
    verbs["choose"] = [this](auto& index) { choose(*box, std::stoi(index)); };
    verbs["item"] = [this](auto& index) { popUp.selectItemAtIndex(std::stoi(index)); };
    verbs["title"] = [this](auto& title) { popUp.selectItemWithTitle(title); };
    verbs["clear"] = [this](auto&) { popUp.removeAllItems(); };
    // A scroll that strays over it.
    verbs["wheel"] = [this](auto&) {
      QWheelEvent wheel({5, 5}, box->mapToGlobal(QPointF(5, 5)), {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
      QApplication::sendEvent(box, &wheel);
    };
  }
  // What has the keyboard, and what is chosen.
  std::string shown() override {
    const char* keyboard = pushed->hasFocus() ? "button" : checked->hasFocus() ? "check" : box->hasFocus() ? "box" : "";
    return std::string(keyboard) + (check.state() ? " on " : " off ") + std::to_string(popUp.indexOfSelectedItem()) +
           popUp.titleOfSelectedItem();
  }

  QPushButton* pushed = new QPushButton("Push");
  QCheckBox* checked = new QCheckBox("Check");
  QComboBox* box = new QComboBox;
  std::unique_ptr<NSButton> button = std::make_unique<NSButton>(pushed);
  NSButton check{checked};
  NSPopUpButton popUp{box};
};

}  // namespace

TEST_F(Controls, SayWhatTheUserDoesAndTakeTheFocusByTabAlone) {
  // clang-format off
  run({{"state on; title db1", "", " on 1db1"},
       {"push; check; choose 1; choose 2; wheel", "pushed, checked, chosen, chosen", " off 2db2"},
       {"item 3", "", " off -1"}, {"item 0; item -1", "", " off -1"}, {"item 0; title DB1", "", " off -1"},
       {"item 0", "", " off 0db0"}, {"clear", "", " off -1"},
       {"key Tab", "", "button off -1"}, {"key Tab", "", "check off -1"}, {"key Tab", "", "box off -1"}});
  // clang-format on
  check.setStringValue("Search & find");
  EXPECT_EQ(check.stringValue(), "Search & find");
  EXPECT_EQ(checked->text(), "Search && find");
  window.hide();
  EXPECT_FALSE(check.isHidden());
  check.setHidden(true);
  test::show(window);
  EXPECT_TRUE(check.isHidden() && !checked->isVisible());
  // The button may go in its action.
  button->setAction([&] { button.reset(), pushed->deleteLater(); });
  click(*pushed);
  EXPECT_EQ(button, nullptr);
}

TEST(ToolTip, OfALabelIsItsOwnOrTheTextThatIsCutAndOfAFieldItsOwn) {
  LabelWidget widget;
  TextFieldWidget fieldWidget;
  NSTextField label(&widget);
  NSTextField field(&fieldWidget);
  show(widget, QSize(200, 60));
  show(fieldWidget, QSize(200, 60));
  // A long text never makes its window wider; a short one is never cut.
  label.setStringValue("Type: SortedSet");
  EXPECT_EQ(widget.minimumSizeHint(), widget.sizeHint());
  field.setStringValue(std::string(500, 'l'));
  EXPECT_EQ(toolTipOf(widget) + toolTipOf(fieldWidget), QString());
  label.setStringValue("<b>" + std::string(50 << 20, 'l') + "</b>");
  EXPECT_LT(widget.minimumSizeHint().width(), 200);
  EXPECT_TRUE(toolTipOf(widget).contains(QStringLiteral("&lt;b&gt;lll")));
  EXPECT_LT(toolTipOf(widget).size(), 3000);
  EXPECT_FALSE(widget.grab().isNull());
  for (NSTextField* one : {&label, &field}) {
    one->setToolTip("its own <i>");
    EXPECT_TRUE(toolTipOf(*one->widget()).contains(QStringLiteral("its own &lt;i&gt;")));
  }
}

}  // namespace tarn::test
