#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSOperationQueue.h"
#include "tests/support/RedisServer.h"
#include "tests/support/program/ProgramTest.h"

#include <unistd.h>

namespace tarn::test {

namespace {

class MainWindow : public ProgramTest {
protected:
  // With the tab of a favourite on show.
  void open() {
    store("local", 1);
    openWindow();
    clickRow("local");
  }
};

using MainWindowDeathTest = MainWindow;

}  // namespace

TEST_F(MainWindowDeathTest, ClosingItEndsTheProcessAlsoWithAnOpenConnection) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        const RedisServer redis;
        store("local", redis.port());
        openWindow();
        connect();
        window().window.widget()->close();
        _exit(3);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(MainWindow, AChangeOfSizeReachesTheTab) {
  open();
  for (const int width : {1000, 1300, 950, 1200}) {
    window().window.widget()->resize(width, 700);
    settle();
  }
  EXPECT_TRUE(waitUntil([&] {
    return tab().valueDataSetTable.tableColumn(0).width() == tab().valueDataSetScrollView.frame().width - 8.0;
  }));
}

TEST_F(MainWindow, TheMenusKeysCloseTheTabAndQuit) {
  open();
  for (int times = 0; times < 2; ++times) {
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(tabOf());
  }
  NSApplication::shared().setShouldTerminate([] { return AppDelegate::shared()->applicationShouldTerminate(); });
  NSOperationQueue::mainQueue().addOperationWithBlock([] { press(Qt::Key_Q, Qt::ControlModifier); });
  EXPECT_EQ(NSApplication::shared().run(), 0);
  NSApplication::shared().setShouldTerminate({});
}

// The menu of the bar takes the keyboard while it is open.
TEST_F(MainWindow, TheEditMenuActsOnTheTextThatHadTheKeyboard) {
  open();
  tab().txtKey.becomeFirstResponder();
  type("name");
  chooseInMainMenu("Edit", "Select All");
  // To "Cut", past "Undo" and "Redo".
  for (const Qt::Key key : {Qt::Key_Alt, Qt::Key_Right, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Return})
    press(key);
  EXPECT_EQ(tab().txtKey.stringValue(), "");
  for (const auto& [item, text] : {std::pair("Undo", "name"), std::pair("Redo", ""), std::pair("Paste", "name")}) {
    chooseInMainMenu("Edit", item);
    EXPECT_EQ(tab().txtKey.stringValue(), text) << item;
  }
  EXPECT_TRUE(tab().txtKey.isFirstResponder());

  // Where no text has the keyboard nothing happens.
  window().serverSelection.becomeFirstResponder();
  chooseInMainMenu("Edit", "Paste");
  EXPECT_EQ(tab().txtKey.stringValue(), "name");
}

}  // namespace tarn::test
