#include "favourites/FavouritesStore.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSOperationQueue.h"
#include "resources/Resources.h"
#include "shell/AppDelegate.h"
#include "shell/MainWindowController.h"
#include "tests/support/AlertRecorder.h"
#include "tests/support/RedisServer.h"
#include "tests/support/TemporaryDataHome.h"
#include "tests/support/widgets/Hand.h"

#include <QMenu>
#include <QMenuBar>
#include <QWidget>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <optional>

namespace tarn::test {

namespace {

// The program as main() puts it together, with one favourite.
struct Program {
  explicit Program(int port) {
    EXPECT_TRUE(loadResources());
    ServerItem server;
    server.setConnectionName("local");
    server.setServerIp("127.0.0.1");
    server.setServerPort(port);
    FavouritesStore().insertRecord(server);
    content.emplace();
    controller.emplace(*content);
    controller->showWindow();
    settle();
  }

  QWidget& window() { return *content->window().widget(); }
  std::shared_ptr<ServerItem> server() { return content->myFavourite()->servers.at(0); }
  // By keyboard: down to the server's row, which opens its tab, and right to expand it.
  ConnectionTabs::Tab openTab() {
    content->outlets().serverSelection.becomeFirstResponder();
    press(Qt::Key_Home);
    press(Qt::Key_Down);
    settle();
    return content->tabForServer(*server());
  }

  TemporaryDataHome dataHome;
  AlertRecorder alerts;
  AppDelegate delegate;
  std::optional<MainViewController> content;
  std::optional<MainWindowController> controller;
};

}  // namespace

TEST(MainWindowControllerDeathTest, ClosingTheWindowEndsTheProcessAlsoWithAnOpenConnection) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        const RedisServer redis;
        Program program(redis.port());
        program.openTab();
        press(Qt::Key_Right);
        if (!waitUntil([&] { return program.server()->connectionStatus() == ConnectionStatus::connected; })) _exit(2);
        program.window().close();
        _exit(3);
      },
      testing::ExitedWithCode(0), "");
}

TEST(MainWindowController, AChangeOfSizeReachesTheTab) {
  Program program(1);
  const auto tab = program.openTab();
  ASSERT_TRUE(tab);
  auto& outlets = tab->outlets();
  const auto fits = [&] {
    return outlets.valueDataSetTable.tableColumn(0).width() == outlets.valueDataSetScrollView.frame().width - 8.0;
  };
  for (const int width : {1000, 1300, 950, 1200}) {
    program.window().resize(width, 700);
    settle();
  }
  EXPECT_TRUE(waitUntil(fits));
}

TEST(MainWindowController, TheMenusKeysCloseTheTabAndQuit) {
  Program program(1);
  ASSERT_TRUE(program.openTab());
  press(Qt::Key_W, Qt::ControlModifier);
  EXPECT_FALSE(program.content->tabForServer(*program.server()));
  // Without a tab there is nothing to close.
  press(Qt::Key_W, Qt::ControlModifier);

  NSApplication::shared().setShouldTerminate([&] { return program.delegate.applicationShouldTerminate(); });
  NSOperationQueue::mainQueue().addOperationWithBlock([] { press(Qt::Key_Q, Qt::ControlModifier); });
  EXPECT_EQ(NSApplication::shared().run(), 0);
  NSApplication::shared().setShouldTerminate({});
}

// The menu of the bar takes the keyboard while it is open, by mouse and by key.
TEST(MainWindowController, TheEditMenuActsOnTheTextThatHadTheKeyboard) {
  Program program(1);
  const ConnectionTabs::Tab tab = program.openTab();
  ASSERT_TRUE(tab);
  NSTextField& key = tab->outlets().txtKey;
  key.becomeFirstResponder();
  type("name");

  auto& bar = *program.window().findChild<QMenuBar*>();
  QAction* const edit = bar.actions().at(1);
  const auto choose = [&](const char* title) {
    auto* menu = qobject_cast<QMenu*>(openPopUp());
    ASSERT_NE(menu, nullptr);
    const auto items = menu->actions();
    const auto item = std::ranges::find(items, QString(title), &QAction::text);
    ASSERT_NE(item, items.end());
    click(*menu, menu->actionGeometry(*item).center());
  };
  const auto openByMouse = [&] { click(bar, bar.actionGeometry(edit).center()); };
  const auto openByKeys = [] {
    press(Qt::Key_Alt);
    press(Qt::Key_Right);
    press(Qt::Key_Down);
  };

  openByMouse();
  choose("Select All");
  openByKeys();
  choose("Cut");
  EXPECT_EQ(key.stringValue(), "");
  openByMouse();
  choose("Undo");
  EXPECT_EQ(key.stringValue(), "name");
  openByMouse();
  choose("Redo");
  openByMouse();
  choose("Paste");
  EXPECT_EQ(key.stringValue(), "name");
  EXPECT_TRUE(key.isFirstResponder());

  // Where no text has the keyboard nothing happens.
  program.content->outlets().serverSelection.becomeFirstResponder();
  openByMouse();
  choose("Paste");
  EXPECT_EQ(key.stringValue(), "name");
}

}  // namespace tarn::test
