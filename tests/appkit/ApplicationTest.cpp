#include "platform/appkit/MenuBuilding.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/NSTimer.h"
#include "tests/appkit/Steps.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

#include <thread>

namespace tarn::test {
namespace {

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

class Application : public Steps {
protected:
  Application() {
    box.addItems({"a", "b"});
    show(button);
    window.layout()->addWidget(&box);
  }

  void openMenu() {
    popUpMenu(menu, window, window.mapToGlobal(QPoint(5, 5)));
    ASSERT_NE(openPopUp(), nullptr);
  }
  // Shows an alert, does something while it is up, and answers it by Return.
  static void duringAlert(const std::function<void()>& action) {
    whenModal([&](QWidget&) { action(), press(Qt::Key_Return); });
    EXPECT_EQ(runAlert("Wait"), 1000);
  }

  NSMenu menu{"Menu"};
  QPushButton button{"One"};
  QComboBox box;
};

TEST_F(Application, RunsPostedBlocksBeforeTheNextInputEventAndNoneWhenItIsPassedOn) {
  QObject::connect(&button, &QPushButton::pressed, [&] {
    post([&] { log.add("block"); });
    QKeyEvent key(QEvent::KeyPress, Qt::Key_A, {}, "a");
    QApplication::sendEvent(other, &key);
    log.add("pressed");
  });
  for (const auto& input : std::initializer_list<std::function<void()>>{
           [&] { QTest::mousePress(&button, Qt::LeftButton); }, [&] { QTest::keyPress(&button, Qt::Key_Space); }}) {
    post([&] { log.add("first"), post([&] { log.add("posted by the first"); }); });
    input();
    EXPECT_EQ(log.take(), "first, posted by the first, pressed");
    settle();
    EXPECT_EQ(log.take(), "block");
    button.setDown(false);
  }
  EXPECT_EQ(other->text(), "aa");
  // One whose receiver a block took away comes to nothing.
  auto* gone = new QPushButton("Gone", &window);
  gone->show();
  post([&] { delete gone; });
  QTest::mousePress(gone, Qt::LeftButton, {}, QPoint(1, 1));
}

TEST_F(Application, WakesForABlockOfAnotherThread) {
  QEventLoop loop;
  std::thread poster([&] { post([&] { loop.quit(); }); });
  loop.exec();
  poster.join();
}

TEST_F(Application, RunsBlocksBehindAnAlertUnlessABlockShowsIt) {
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
  // In the time of several of their own log.
  const auto expectHeld = [&] {
    const int before = fired;
    EXPECT_TRUE(passes(toolkitFired, 4));
    EXPECT_EQ(fired, before);
  };
  EXPECT_TRUE(passes(fired, 1));
  duringAlert(expectHeld);
  for (const auto& open : std::initializer_list<std::function<void()>>{[&] { openMenu(); }, [&] { click(box); }}) {
    EXPECT_TRUE(passes(fired, 1));
    open();
    expectHeld();
    press(Qt::Key_Escape);
  }
  EXPECT_TRUE(passes(fired, 1));
  timer->invalidate();
}

TEST_F(Application, AnAlertAnswersByReturnAndEscape) {
  const auto answer = [](Qt::Key key, const std::vector<std::string>& buttons) {
    bool stayed = false;
    whenModal([&](QWidget& panel) {
      press(key);
      stayed = panel.isVisible();
      if (stayed) press(Qt::Key_Return);
    });
    const int given = runAlert("Question", buttons);
    return stayed ? 0 : given;
  };
  EXPECT_EQ(answer(Qt::Key_Return, {}), 1000);
  EXPECT_EQ(answer(Qt::Key_Escape, {}), 1000);
  EXPECT_EQ(answer(Qt::Key_Return, {"Replace", "Cancel"}), 1000);
  EXPECT_EQ(answer(Qt::Key_Escape, {"Replace", "Cancel"}), 1001);
  EXPECT_EQ(answer(Qt::Key_Escape, {"Cancel", "Replace"}), 1000);
  EXPECT_EQ(answer(Qt::Key_Escape, {"Yes", "No"}), 0);
}

TEST_F(Application, AnAlertShowsTextsAsTheyAreSideBySideOnTheScreen) {
  for (const bool isLong : {true, false}) {
    whenModal([&](QWidget& panel) {
      const auto* shown = panel.findChild<QPlainTextEdit*>();
      EXPECT_TRUE(shown->toPlainText().startsWith("<b>key</b> & <img src=x>\n"));
      EXPECT_EQ(shown->verticalScrollBar()->maximum() > 0, isLong);
      EXPECT_TRUE(panel.height() < 560 && panel.width() < 900);
      const auto parts = panel.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
      EXPECT_EQ(parts.size(), 5);
      for (const QWidget* part : parts) {
        EXPECT_TRUE(panel.rect().contains(part->geometry()));
        for (const QWidget* other : parts)
          EXPECT_TRUE(part == other || !part->geometry().intersects(other->geometry()));
      }
      press(Qt::Key_Return);
    });
    const auto length =
        isLong ? std::string(30'000, 'w') : QString("One more sentence to read. ").repeated(12).toStdString();
    runAlert("<b>key</b> & <img src=x>\n" + length, {"Yes", "No"}, "More");
  }
}

TEST_F(Application, AnAlertClosesAnOpenMenuAndWaitsForTheEndOfAChangeOfFocus) {
  openMenu();
  duringAlert([] { EXPECT_EQ(openPopUp(), nullptr); });
  QObject::connect(other, &QLineEdit::editingFinished, [&] {
    if (runAlert("Field") == 1000) log.add("answered at once");
  });
  button.setFocusPolicy(Qt::StrongFocus);
  test::show(window);
  type("x");
  whenModal([&](QWidget&) { log.add("shown"), press(Qt::Key_Return); });
  button.setFocus();
  log.add("the code goes on");
  EXPECT_EQ(log.take(), "answered at once, shown, the code goes on");
  settle();
  EXPECT_TRUE(button.hasFocus());
}

}  // namespace
}  // namespace tarn::test
