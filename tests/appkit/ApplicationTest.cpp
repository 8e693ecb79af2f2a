#include "platform/appkit/NSApplication.h"

#include "platform/appkit/MenuBuilding.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSMenu.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/NSTimer.h"
#include "tests/support/widgets/Hand.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QComboBox>
#include <QEventLoop>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>

#include <cstdio>
#include <thread>

namespace tarn::test {
namespace {

using Steps = std::vector<std::string>;

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

class Application : public testing::Test {
protected:
  Application() : layout(&window) {
    layout.addWidget(&button);
    layout.addWidget(&other);
    button.setFocusPolicy(Qt::StrongFocus);
    show(window, {300, 200});
  }

  Steps steps;
  QWidget window;
  QVBoxLayout layout;
  QPushButton button{"One"};
  QPushButton other{"Two"};
};

TEST_F(Application, RunsPostedBlocksBeforeTheNextInputEvent) {
  QObject::connect(&button, &QPushButton::clicked, [&] { steps.emplace_back("click"); });
  post([&] {
    steps.emplace_back("first");
    post([&] { steps.emplace_back("posted by the first"); });
  });
  QTest::mouseClick(&button, Qt::LeftButton);
  EXPECT_EQ(steps, (Steps{"first", "posted by the first", "click"}));

  steps.clear();
  post([&] { steps.emplace_back("block"); });
  QTest::keyClick(&button, Qt::Key_Space);
  EXPECT_EQ(steps, (Steps{"block", "click"}));
}

TEST_F(Application, DropsAnInputEventWhoseReceiverABlockTookAway) {
  auto* gone = new QPushButton("Gone", &window);
  gone->show();
  post([&] { delete gone; });
  QTest::mousePress(gone, Qt::LeftButton, {}, QPoint(1, 1));
}

TEST_F(Application, RunsNoBlockInPlaceWhenAReceiverPassesAnInputEventOn) {
  class Passing final : public QWidget {
  public:
    Passing(QWidget& target, Steps& steps) : target_(target), steps_(steps) {}
    void keyPressEvent(QKeyEvent* event) override {
      post([this] { steps_.emplace_back("block"); });
      QApplication::sendEvent(&target_, event);
      steps_.emplace_back("passed on");
    }

  private:
    QWidget& target_;
    Steps& steps_;
  } passing(other, steps);
  QTest::keyClick(&passing, Qt::Key_A);
  settle();
  EXPECT_EQ(steps, (Steps{"passed on", "block"}));
}

TEST_F(Application, WakesForABlockOfAnotherThread) {
  QEventLoop loop;
  std::thread poster([&] { post([&] { loop.quit(); }); });
  loop.exec();
  poster.join();
}

TEST_F(Application, HoldsBlocksBackWhileOneOfThemShowsAnAlert) {
  post([&] {
    whenModal([&](QWidget&) {
      settle();
      steps.emplace_back("alert is up");
      press(Qt::Key_Return);
    });
    runAlert("Wait");
    steps.emplace_back("first ended");
  });
  post([&] { steps.emplace_back("second"); });
  settle();
  EXPECT_EQ(steps, (Steps{"alert is up", "first ended", "second"}));
}

TEST_F(Application, LetsBlocksRunBehindAnAlertRaisedByAClick) {
  QObject::connect(&button, &QPushButton::clicked, [&] {
    whenModal([&](QWidget&) {
      post([&] { steps.emplace_back("block"); });
      settle();
      press(Qt::Key_Return);
    });
    runAlert("Wait");
    steps.emplace_back("answered");
  });
  click(button);
  EXPECT_EQ(steps, (Steps{"block", "answered"}));
}

TEST_F(Application, FiresTimersInTheEventLoopButNotUnderAnAlertAMenuOrAnOpenList) {
  int fired = 0;
  const auto timer = NSTimer::scheduledTimerWithTimeInterval(0.02, true, [&] { ++fired; });
  ASSERT_TRUE(waitUntil([&] { return fired > 0; }));

  // Each holds for several intervals; all that was missed makes one shot.
  const auto holds = [&](const std::function<void()>& close) {
    const int before = fired;
    QTest::qWait(120);
    const bool held = fired == before;
    close();
    return held;
  };
  whenModal([&](QWidget&) { EXPECT_TRUE(holds([] { press(Qt::Key_Return); })); });
  runAlert("Wait");
  EXPECT_TRUE(waitUntil([&, before = fired] { return fired > before; }));

  NSMenu menu("Menu");
  menu.addItem("Item", [] {});
  popUpMenu(menu, window, window.mapToGlobal(QPoint(5, 5)));
  EXPECT_TRUE(holds([] { press(Qt::Key_Escape); }));
  EXPECT_TRUE(waitUntil([&, before = fired] { return fired > before; }));

  QComboBox box(&window);
  box.addItems({"a", "b"});
  box.show();
  click(box);
  ASSERT_NE(openPopUp(), nullptr);
  EXPECT_TRUE(holds([] { press(Qt::Key_Escape); }));
  EXPECT_TRUE(waitUntil([&, before = fired] { return fired > before; }));
  timer->invalidate();
}

TEST_F(Application, FiresARepeatingTimerOnceForAllThatItMissed) {
  int fired = 0;
  const auto timer = NSTimer::scheduledTimerWithTimeInterval(0.05, true, [&] { ++fired; });
  whenModal([&](QWidget&) {
    QTest::qWait(400);
    press(Qt::Key_Return);
  });
  runAlert("Wait");
  QTest::qWait(10);
  EXPECT_LE(fired, 1);
  timer->invalidate();
}

TEST_F(Application, TerminatesWhenNobodyObjects) {
  bool may = false;
  NSApplication::shared().setShouldTerminate([&] { return may; });
  post([&] {
    NSApplication::shared().terminate();
    steps.emplace_back("refused");
    may = true;
    NSApplication::shared().terminate();
  });
  EXPECT_EQ(NSApplication::shared().run(), 0);
  EXPECT_EQ(steps, Steps{"refused"});
  NSApplication::shared().setShouldTerminate(nullptr);
}

TEST(ApplicationDeathTest, ExitsAtOnceWithWhatWasPrintedAndNoDestructor) {
  struct Loud {
    ~Loud() { std::_Exit(9); }
  };
  EXPECT_EXIT(
      {
        static const Loud loud;
        NSApplication::exitNow(3);
      },
      testing::ExitedWithCode(3), "");
}

class Alert : public Application {
protected:
  // What runModal answers when this key is pressed in the alert; 0 when the alert stays.
  static int answerTo(Qt::Key key, const std::vector<std::string>& buttons) {
    bool stayed = false;
    whenModal([&](QWidget& panel) {
      press(key);
      stayed = panel.isVisible();
      if (stayed) press(Qt::Key_Return);
    });
    const int answer = runAlert("Question", buttons);
    return stayed ? 0 : answer;
  }
};

TEST_F(Alert, AnswersByReturnAndEscape) {
  EXPECT_EQ(answerTo(Qt::Key_Return, {}), 1000);
  EXPECT_EQ(answerTo(Qt::Key_Escape, {}), 1000);
  EXPECT_EQ(answerTo(Qt::Key_Return, {"Replace", "Cancel"}), 1000);
  EXPECT_EQ(answerTo(Qt::Key_Escape, {"Replace", "Cancel"}), 1001);
  EXPECT_EQ(answerTo(Qt::Key_Escape, {"Cancel", "Replace"}), 1000);
  EXPECT_EQ(answerTo(Qt::Key_Escape, {"Yes", "No"}), 0);
}

TEST_F(Alert, AnswersByTheNumberOfTheButtonClicked) {
  for (int number = 0; number < 3; ++number) {
    const std::vector<std::string> titles{"Keep & Go", "Convert", "Cancel"};
    whenModal([&](QWidget& panel) {
      for (QPushButton* choice : panel.findChildren<QPushButton*>()) {
        if (choice->text().startsWith(QString::fromStdString(titles[static_cast<std::size_t>(number)]).left(4))) {
          click(*choice);
          return;
        }
      }
    });
    EXPECT_EQ(runAlert("Question", titles), 1000 + number);
  }
}

TEST_F(Alert, ShowsAUsersTextAsItIsAndStaysOnTheScreen) {
  const std::string text = "<b>key</b> & <img src=x>\n" + std::string(30'000, 'w');
  whenModal([&](QWidget& panel) {
    const auto* shown = panel.findChild<QPlainTextEdit*>();
    EXPECT_TRUE(shown->toPlainText().startsWith(QString::fromUtf8("<b>key</b> & <img src=x>\nwww")));
    EXPECT_LT(panel.height(), 560);
    EXPECT_LT(panel.width(), 900);
    press(Qt::Key_Return);
  });
  runAlert(text);
}

TEST_F(Alert, IsAsHighAsItsMessage) {
  std::string sentences;
  for (int sentence = 0; sentence < 12; ++sentence)
    sentences += "There is one more sentence to read here. ";
  whenModal([&](QWidget& panel) {
    EXPECT_EQ(panel.findChild<QPlainTextEdit*>()->verticalScrollBar()->maximum(), 0);
    press(Qt::Key_Return);
  });
  runAlert(sentences);
}

TEST_F(Alert, ClosesAnOpenMenuFirst) {
  NSMenu menu("Menu");
  menu.addItem("Item", [] {});
  popUpMenu(menu, window, window.mapToGlobal(QPoint(5, 5)));
  ASSERT_NE(openPopUp(), nullptr);
  whenModal([&](QWidget&) {
    EXPECT_EQ(openPopUp(), nullptr);
    press(Qt::Key_Return);
  });
  runAlert("Now");
}

TEST_F(Alert, RaisedInAChangeOfFocusShowsWhenTheChangeHasEnded) {
  class Raising final : public QPushButton {
  public:
    explicit Raising(Steps& steps, QWidget* parent) : QPushButton(parent), steps_(steps) {}
    void focusOutEvent(QFocusEvent* event) override {
      QPushButton::focusOutEvent(event);
      if (event->reason() == Qt::ActiveWindowFocusReason) return;
      if (runAlert("Field") == 1000) steps_.emplace_back("answered at once");
    }

  private:
    Steps& steps_;
  } raising(steps, &window);
  raising.show();
  raising.setFocus();
  settle();

  whenModal([&](QWidget&) {
    steps.emplace_back("shown");
    press(Qt::Key_Return);
  });
  other.setFocus();
  steps.emplace_back("the code goes on");
  EXPECT_EQ(steps, (Steps{"answered at once", "shown", "the code goes on"}));
  settle();
  EXPECT_TRUE(other.hasFocus());
}

}  // namespace
}  // namespace tarn::test
