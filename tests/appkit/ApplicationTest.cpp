#include "platform/appkit/MenuBuilding.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSMenu.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/NSTimer.h"
#include "tests/appkit/Keys.h"

#include <QApplication>
#include <QComboBox>
#include <QEventLoop>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace tarn::test {
namespace {

void post(std::function<void()> block) {
  NSOperationQueue::mainQueue().addOperationWithBlock(std::move(block));
}

int runAlert(const std::string& message, const std::vector<std::string>& buttons = {}) {
  NSAlert alert;
  alert.setMessageText(message);
  for (const std::string& title : buttons)
    alert.addButtonWithTitle(title);
  return alert.runModal();
}

// Shows an alert, does something while it is up, and answers it by Return.
void duringAlert(const std::function<void(QWidget& panel)>& action, const std::string& message = "Wait") {
  whenModal([&](QWidget& panel) {
    action(panel);
    press(Qt::Key_Return);
  });
  EXPECT_EQ(runAlert(message), 1000);
}

// Does something at each event of one kind.
class Overriding final : public QPushButton {
public:
  Overriding(QWidget* parent, QEvent::Type type, std::function<void(QEvent&)> act)
      : QPushButton(parent), type_(type), act_(std::move(act)) {}

protected:
  bool event(QEvent* event) override {
    const bool handled = event->type() == type_ || QPushButton::event(event);
    if (event->type() == type_) act_(*event);
    return handled;
  }

private:
  QEvent::Type type_;
  std::function<void(QEvent&)> act_;
};

class Application : public testing::Test {
protected:
  Application() : layout(&window) {
    layout.addWidget(&button);
    layout.addWidget(&other);
    menu.addItem("Item", [] {});
    button.setFocusPolicy(Qt::StrongFocus);
    show(window, {300, 200});
  }

  void openMenu() { popUpMenu(menu, window, window.mapToGlobal(QPoint(5, 5))); }

  Log steps;
  NSMenu menu{"Menu"};
  QWidget window;
  QVBoxLayout layout;
  QPushButton button{"One"};
  QPushButton other{"Two"};
};

TEST_F(Application, RunsPostedBlocksBeforeTheNextInputEvent) {
  QObject::connect(&button, &QPushButton::clicked, [&] { steps.add("click"); });
  for (const auto& input : std::initializer_list<std::function<void()>>{
           [&] { QTest::mouseClick(&button, Qt::LeftButton); }, [&] { QTest::keyClick(&button, Qt::Key_Space); }}) {
    post([&] {
      steps.add("first");
      post([&] { steps.add("posted by the first"); });
    });
    input();
    EXPECT_EQ(steps.take(), "first, posted by the first, click");
  }
}

TEST_F(Application, DropsAnInputEventWhoseReceiverABlockTookAway) {
  auto* gone = new QPushButton("Gone", &window);
  gone->show();
  post([&] { delete gone; });
  QTest::mousePress(gone, Qt::LeftButton, {}, QPoint(1, 1));
}

TEST_F(Application, RunsNoBlockInPlaceWhenAReceiverPassesAnInputEventOn) {
  Overriding passing(nullptr, QEvent::KeyPress, [&](QEvent& event) {
    post([&] { steps.add("block"); });
    QApplication::sendEvent(&other, &event);
    steps.add("passed on");
  });
  QTest::keyClick(&passing, Qt::Key_A);
  settle();
  EXPECT_EQ(steps.take(), "passed on, block");
}

TEST_F(Application, WakesForABlockOfAnotherThread) {
  QEventLoop loop;
  std::thread poster([&] { post([&] { loop.quit(); }); });
  loop.exec();
  poster.join();
}

TEST_F(Application, RunsBlocksBehindAnAlertUnlessABlockShowsIt) {
  post([&] {
    duringAlert([&](QWidget&) {
      settle();
      steps.add("alert is up");
    });
    steps.add("first ended");
  });
  post([&] { steps.add("second"); });
  settle();
  EXPECT_EQ(steps.take(), "alert is up, first ended, second");

  QObject::connect(&button, &QPushButton::clicked, [&] {
    duringAlert([&](QWidget&) {
      post([&] { steps.add("block"); });
      settle();
    });
    steps.add("answered");
  });
  click(button);
  EXPECT_EQ(steps.take(), "block, answered");
}

TEST_F(Application, FiresTimersInTheEventLoopButNotUnderAnAlertAMenuOrAnOpenList) {
  int fired = 0;
  const auto timer = NSTimer::scheduledTimerWithTimeInterval(0.02, true, [&] { ++fired; });
  const auto fires = [&] { return waitUntil([&, before = fired] { return fired > before; }); };
  // The toolkit's own timers go on: as many of their steps would have let ours
  // fire.
  const auto holds = [&] {
    const int before = fired;
    int steps = 0;
    QTimer toolkits;
    QObject::connect(&toolkits, &QTimer::timeout, [&] { ++steps; });
    toolkits.start(20);
    return waitUntil([&] { return steps == 4; }) && fired == before;
  };
  ASSERT_TRUE(fires());
  duringAlert([&](QWidget&) { EXPECT_TRUE(holds()); });
  EXPECT_TRUE(fires());

  QComboBox box(&window);
  box.addItems({"a", "b"});
  box.show();
  for (const auto& open : std::initializer_list<std::function<void()>>{[&] { openMenu(); }, [&] { click(box); }}) {
    open();
    ASSERT_NE(openPopUp(), nullptr);
    EXPECT_TRUE(holds());
    press(Qt::Key_Escape);
    EXPECT_TRUE(fires());
  }
  timer->invalidate();
}

using Alert = Application;

TEST_F(Alert, AnswersByReturnAndEscape) {
  struct Case {
    Qt::Key key;
    std::vector<std::string> buttons;
    int answer;  // 0: the alert stays
  };
  // clang-format off
  for (const auto& [key, buttons, answer] : {
           Case{Qt::Key_Return, {}, 1000}, {Qt::Key_Escape, {}, 1000}, {Qt::Key_Return, {"Replace", "Cancel"}, 1000},
           {Qt::Key_Escape, {"Replace", "Cancel"}, 1001}, {Qt::Key_Escape, {"Cancel", "Replace"}, 1000},
           {Qt::Key_Escape, {"Yes", "No"}, 0}}) {
    // clang-format on
    bool stayed = false;
    whenModal([&, pressed = key](QWidget& panel) {
      press(pressed);
      stayed = panel.isVisible();
      if (stayed) press(Qt::Key_Return);
    });
    const int given = runAlert("Question", buttons);
    EXPECT_EQ(stayed ? 0 : given, answer) << key << " " << buttons.size();
  }
}

TEST_F(Alert, ShowsAUsersTextAsItIsAndStaysOnTheScreen) {
  duringAlert(
      [](QWidget& panel) {
        const auto* shown = panel.findChild<QPlainTextEdit*>();
        EXPECT_TRUE(shown->toPlainText().startsWith(QString::fromUtf8("<b>key</b> & <img src=x>\nwww")));
        EXPECT_LT(panel.height(), 560);
        EXPECT_LT(panel.width(), 900);
      },
      "<b>key</b> & <img src=x>\n" + std::string(30'000, 'w'));

  duringAlert([](QWidget& panel) { EXPECT_EQ(panel.findChild<QPlainTextEdit*>()->verticalScrollBar()->maximum(), 0); },
              QStringLiteral("There is one more sentence to read here. ").repeated(12).toStdString());
}

TEST_F(Alert, ClosesAnOpenMenuFirst) {
  openMenu();
  ASSERT_NE(openPopUp(), nullptr);
  duringAlert([](QWidget&) { EXPECT_EQ(openPopUp(), nullptr); });
}

TEST_F(Alert, RaisedInAChangeOfFocusShowsWhenTheChangeHasEnded) {
  Overriding raising(&window, QEvent::FocusOut, [&](QEvent& event) {
    if (static_cast<QFocusEvent&>(event).reason() == Qt::ActiveWindowFocusReason) return;
    if (runAlert("Field") == 1000) steps.add("answered at once");
  });
  raising.show();
  raising.setFocus();
  settle();

  whenModal([&](QWidget&) {
    steps.add("shown");
    press(Qt::Key_Return);
  });
  other.setFocus();
  steps.add("the code goes on");
  EXPECT_EQ(steps.take(), "answered at once, shown, the code goes on");
  settle();
  EXPECT_TRUE(other.hasFocus());
}

}  // namespace
}  // namespace tarn::test
