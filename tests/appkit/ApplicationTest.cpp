#include "platform/appkit/MenuBuilding.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/text/LabelWidget.h"
#include "platform/appkit/text/TextFieldWidget.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/NSTimer.h"
#include "tests/appkit/Steps.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QWheelEvent>

#include <thread>

namespace tarn::test {
namespace {

using Actions = std::vector<std::function<void()>>;

void post(std::function<void()> block) {
  NSOperationQueue::mainQueue().addOperationWithBlock(std::move(block));
}

int runAlert(const std::string& message, const std::vector<std::string>& buttons = {}, const std::string& more = {}) {
  NSAlert alert;
  alert.setMessageText(message);
  alert.setInformativeText(more);
  for (const std::string& title : buttons)
    alert.addButtonWithTitle(title);
  return alert.runModal();
}

// Shows an alert, does something while it is up, and answers it by Return.
void duringAlert(const std::function<void()>& action) {
  whenModal([&](QWidget&) { action(), press(Qt::Key_Return); });
  EXPECT_EQ(runAlert("Wait"), 1000);
}

// A window with a button, a check box and a pop-up, which say their actions.
class Application : public Steps {
protected:
  Application() {
    show(*pushed);
    for (QWidget* widget : std::initializer_list<QWidget*>{checked, box})
      window.layout()->addWidget(widget);
    popUp.addItemWithTitle("db0");
    EXPECT_EQ(popUp.indexOfSelectedItem(), 0);
    popUp.addItemsWithTitles({"db1", "db2"});
    button->setAction([this] { log.add("pushed"); });
    check.setAction([this] { log.add("checked"); });
    popUp.setAction([this] { log.add("chosen"); });
  }
  std::string chosen() { return std::to_string(popUp.indexOfSelectedItem()) + popUp.titleOfSelectedItem(); }
  void openMenu() {
    popUpMenu(NSMenu("Menu"), window, window.mapToGlobal(QPoint(5, 5)));
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
  }

  QPushButton* pushed = new QPushButton("Push");
  QCheckBox* checked = new QCheckBox("Check");
  QComboBox* box = new QComboBox;
  std::unique_ptr<NSButton> button = std::make_unique<NSButton>(pushed);
  NSButton check{checked};
  NSPopUpButton popUp{box};
};

TEST_F(Application, RunsPostedBlocksBeforeTheNextInputEventAndNoneWhenItIsPassedOn) {
  QObject::connect(pushed, &QPushButton::pressed, [&] {
    post([&] { log.add("block"); });
    QKeyEvent key(QEvent::KeyPress, Qt::Key_A, {}, "a");
    QApplication::sendEvent(other, &key);
    log.add("pressed");
  });
  for (const auto& input :
       Actions{[&] { QTest::mousePress(pushed, Qt::LeftButton); }, [&] { QTest::keyPress(pushed, Qt::Key_Space); }}) {
    post([&] { log.add("first"), post([&] { log.add("posted by the first"); }); });
    input();
    EXPECT_EQ(log.take(), "first, posted by the first, pressed");
    settle();
    EXPECT_EQ(log.take(), "block");
    pushed->setDown(false);
  }
  EXPECT_EQ(other->text(), "aa");
  // One whose receiver a block took away comes to nothing.
  auto* gone = new QPushButton("Gone", &window);
  gone->show();
  post([&] { delete gone; });
  QTest::mousePress(gone, Qt::LeftButton, {}, QPoint(1, 1));
}

TEST_F(Application, RunsBlocksOfAnyThreadBehindAnAlertUnlessABlockShowsIt) {
  QEventLoop loop;
  std::thread poster([&] { post([&] { loop.quit(); }); });
  loop.exec();
  poster.join();
  post([&] { duringAlert([&] { settle(), log.add("alert is up"); }), log.add("first ended"); });
  post([&] { log.add("second"); });
  settle();
  EXPECT_EQ(log.take(), "alert is up, first ended, second");
  duringAlert([&] { post([&] { log.add("block"); }), settle(), log.add("alert is up"); });
  EXPECT_EQ(log.take(), "block, alert is up");
}

TEST_F(Application, FiresTimersInTheEventLoopButNotUnderAnAlertAMenuOrAnOpenList) {
  int fired = 0;
  int toolkitFired = 0;
  QTimer toolkits;
  QObject::connect(&toolkits, &QTimer::timeout, [&] { ++toolkitFired; });
  toolkits.start(20);
  const auto timer = NSTimer::scheduledTimerWithTimeInterval(0.02, true, [&] { ++fired; });
  const auto passes = [](const int& count, int steps) {
    return waitUntil([&, end = count + steps] { return count >= end; });
  };
  const auto expectHeld = [&] {
    const int before = fired;
    EXPECT_TRUE(passes(toolkitFired, 4));
    EXPECT_EQ(fired, before);
  };
  for (const auto& hold :
       Actions{[&] { duringAlert(expectHeld); }, [&] { openMenu(), expectHeld(), press(Qt::Key_Escape); },
               [&] { click(*box), expectHeld(), press(Qt::Key_Escape); }}) {
    EXPECT_TRUE(passes(fired, 1));
    hold();
  }
  EXPECT_TRUE(passes(fired, 1));
  timer->invalidate();
}

TEST_F(Application, AnAlertAnswersByReturnAndEscape) {
  using Buttons = std::vector<std::string>;
  const std::tuple<Qt::Key, Buttons, std::string> cases[] = {{Qt::Key_Escape, {}, "1000"},
                                                             {Qt::Key_Return, {"Replace", "Cancel"}, "1000"},
                                                             {Qt::Key_Escape, {"Replace", "Cancel"}, "1001"},
                                                             {Qt::Key_Escape, {"Cancel", "Replace"}, "1000"},
                                                             {Qt::Key_Escape, {"Yes", "No"}, "stays, 1000"}};
  for (const auto& [key, buttons, expected] : cases) {
    whenModal([&](QWidget& panel) {
      press(key);
      if (panel.isVisible()) log.add("stays"), press(Qt::Key_Return);
    });
    log.add(std::to_string(runAlert("Question", buttons)));
    EXPECT_EQ(log.take(), expected);
  }
}

TEST_F(Application, AnAlertShowsTextsAsTheyAreSideBySideOnTheScreen) {
  for (const bool isLong : {true, false}) {
    whenModal([&](QWidget& panel) {
      const auto* shown = panel.findChild<QPlainTextEdit*>();
      EXPECT_TRUE(shown->toPlainText().startsWith("<b>key</b> & <img src=x>\n"));
      EXPECT_EQ(shown->verticalScrollBar()->maximum() > 0, isLong);
      EXPECT_TRUE(panel.height() < 560 && panel.width() < 900);
      QRegion taken;
      for (const QWidget* part : panel.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        EXPECT_TRUE(panel.rect().contains(part->geometry()) && !taken.intersects(part->geometry()));
        taken += part->geometry();
      }
      press(Qt::Key_Return);
    });
    runAlert("<b>key</b> & <img src=x>\n" + std::string(isLong ? 30'000 : 300, 'w'), {"Yes", "No"}, "More");
  }
}

TEST_F(Application, AnAlertClosesAnOpenMenuAndWaitsForTheEndOfAChangeOfFocus) {
  openMenu();
  duringAlert([] { EXPECT_EQ(QApplication::activePopupWidget(), nullptr); });
  QObject::connect(other, &QLineEdit::editingFinished, [&] {
    if (runAlert("Field") == 1000) log.add("answered at once");
  });
  test::show(window);
  type("x");
  whenModal([&](QWidget&) { log.add("shown"), press(Qt::Key_Return); });
  pushed->setFocus();
  log.add("the code goes on");
  EXPECT_EQ(log.take(), "answered at once, shown, the code goes on");
  settle();
  EXPECT_TRUE(pushed->hasFocus());
}

TEST_F(Application, ControlsSayWhatTheUserDoesAndTakeTheFocusByTabAlone) {
  check.setState(true);
  popUp.selectItemWithTitle("db1");
  EXPECT_EQ(log.take() + chosen(), "1db1");
  click(*pushed);
  click(*checked, QPoint(8, checked->height() / 2));
  choose(popUp, "db1");
  choose(popUp, "db2");
  // A scroll that strays over it.
  QWheelEvent wheel({5, 5}, box->mapToGlobal(QPointF(5, 5)), {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
  QApplication::sendEvent(box, &wheel);
  EXPECT_EQ(log.take() + chosen(), "pushed, checked, chosen, chosen2db2");
  EXPECT_TRUE(other->hasFocus() && !check.state());
  for (const auto& select : Actions{[&] { popUp.selectItemAtIndex(3); }, [&] { popUp.selectItemAtIndex(-1); },
                                    [&] { popUp.selectItemWithTitle("DB1"); }, [&] { popUp.removeAllItems(); }}) {
    popUp.selectItemAtIndex(0);
    EXPECT_EQ(chosen(), "0db0");
    select();
    EXPECT_EQ(chosen(), "-1");
  }
  for (const QWidget* next : std::initializer_list<const QWidget*>{pushed, checked, box}) {
    keys("Tab");
    EXPECT_TRUE(next->hasFocus());
  }
  check.setStringValue("Search & find");
  EXPECT_TRUE(check.stringValue() == "Search & find" && checked->text() == "Search && find");
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
  label.setStringValue("<b>" + std::string(50 << 20, 'l'));
  EXPECT_TRUE(widget.minimumSizeHint().width() < 200 && !widget.grab().isNull());
  EXPECT_TRUE(toolTipOf(widget).contains("&lt;b&gt;lll") && toolTipOf(widget).size() < 3000);
  for (NSTextField* one : {&label, &field}) {
    one->setToolTip("its own <i>");
    EXPECT_TRUE(toolTipOf(*one->widget()).contains("its own &lt;i&gt;"));
  }
}

}  // namespace
}  // namespace tarn::test
