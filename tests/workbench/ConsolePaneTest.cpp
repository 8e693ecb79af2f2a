#include "tests/support/RedisServer.h"
#include "tests/workbench/TabFixture.h"
#include "wire/ServerItemHost.h"

#include <QClipboard>
#include <QGuiApplication>

namespace tarn::test {
namespace {

// What the main window does for a tab.
class TabHost final : public ServerItemHost {
public:
  TabHost() { install(this); }
  ~TabHost() override { install(nullptr); }

  void reloadServerRow(const std::shared_ptr<ServerItem>&) override {}
  void refreshServerRow(const std::shared_ptr<ServerItem>&) override {}
  void showStatusInTab(const std::shared_ptr<ServerItem>&) override { tab->updateStatusLabel(); }
  void bringDatabasesUpToDate(const std::shared_ptr<ServerItem>&, bool) override {}
  void showSelectedDatabase(const std::shared_ptr<ServerItem>& server) override {
    tab->selectDatabase(server->currentDbIdx());
  }

  std::shared_ptr<OperationTabViewController> tab;
};

class Console : public TabFixture {
protected:
  void open(int port) {
    openTab(port);
    host.tab = tab;
    server->setConnectionName("local");
    click(*console().widget());
    press(Qt::Key_End, Qt::ControlModifier);
  }

  NSTextView& console() { return outlets().txtViewCli; }
  std::string text() { return console().string(); }

  static void paste(const std::string& text) {
    QGuiApplication::clipboard()->setText(QString::fromStdString(text));
    press(Qt::Key_V, Qt::ControlModifier);
  }

  RedisServer redis{{"--databases", "4"}};
  TabHost host;
};

TEST_F(Console, RunsTypedLines) {
  open(redis.port());
  EXPECT_FALSE(outlets().cliScrollView.isHidden());
  EXPECT_EQ(text(), "Welcome: ");
  type("set k 12");
  press(Qt::Key_Backspace);
  press(Qt::Key_Left);
  press(Qt::Key_Return);
  const std::string first = "Welcome: set k 1\nlocal: OK\nlocal: ";
  EXPECT_EQ(text(), first);
  EXPECT_EQ(redis.command({"GET", "k"}), "$1\r\n1\r\n");
  type("get k");
  press(Qt::Key_Enter);
  EXPECT_EQ(text(), first + "get k\nlocal: 1\nlocal: ");
  press(Qt::Key_Return);
  EXPECT_EQ(text(), first + "get k\nlocal: 1\nlocal: \nlocal: \nlocal: ");
}

// A CRLF is two line ends, so the open line runs behind what was pasted.
TEST_F(Console, RunsPastedLinesAndLeavesTheLastOneOpen) {
  open(redis.port());
  std::string shown = "Welcome: ";
  const auto shows = [&](std::string_view added) { return text() == shown.append(added); };
  paste("ping");
  EXPECT_TRUE(shows("ping")) << text();
  paste("set a 1\nget a\n");
  EXPECT_TRUE(shows("set a 1\nlocal: OK\nlocal: get a\nlocal: 1\nlocal: ")) << text();
  paste("set b 2\nget");
  EXPECT_TRUE(shows("set b 2\nlocal: OK\nlocal: get")) << text();
  type(" b");
  press(Qt::Key_Return);
  EXPECT_TRUE(shows(" b\nlocal: 2\nlocal: ")) << text();
  paste("get c\r\n");
  EXPECT_TRUE(shows("get c\nlocal: (nil)\nlocal: \nlocal: \nlocal: ")) << text();
  paste("get c\n\nget d");
  EXPECT_TRUE(shows("get c\nlocal: (nil)\nlocal: get d\nlocal: (nil)\nlocal: ")) << text();
}

TEST_F(Console, ProtectsWhatWasSaidAndKeepsTheOpenLineInSight) {
  open(redis.port());
  redis.command({"SET", "k", "值 \xF0\x9F\x98\x80"});
  type("get k");
  press(Qt::Key_Return);
  const std::string shown = "Welcome: get k\nlocal: 值 \xF0\x9F\x98\x80\nlocal: ";
  ASSERT_EQ(text(), shown);
  press(Qt::Key_Backspace);
  press(Qt::Key_Left);
  type("x");
  press(Qt::Key_Return);
  paste("y");
  press(Qt::Key_A, Qt::ControlModifier);
  type("z");
  press(Qt::Key_X, Qt::ControlModifier);
  press(Qt::Key_Delete);
  EXPECT_EQ(text(), shown);
  press(Qt::Key_End, Qt::ControlModifier);
  type("get \"k\"");
  press(Qt::Key_Return);
  EXPECT_EQ(text(), shown + "get \"k\"\nlocal: 值 \xF0\x9F\x98\x80\nlocal: ");

  std::string lines;
  for (int i = 0; i < 50; ++i)
    lines += "echo " + std::to_string(i) + "\n";
  paste(lines);
  const QRect caret = console().widget()->inputMethodQuery(Qt::ImCursorRectangle).toRect();
  EXPECT_TRUE(console().widget()->rect().contains(caret)) << caret.y();
}

TEST_F(Console, ActsOnTheDatabaseOnShowAndCarriesItAlong) {
  open(redis.port());
  tab->selectDatabase(2);
  paste("set here 1\nselect 3\nset there 1\n");
  EXPECT_EQ(redis.command({"GET", "here"}, 2), "$1\r\n1\r\n");
  EXPECT_EQ(redis.command({"GET", "there"}, 3), "$1\r\n1\r\n");
  EXPECT_EQ(outlets().popDatabase.titleOfSelectedItem(), "db3");
  EXPECT_EQ(tab->shownDatabase(), 3);

  tab->selectDatabase(7);
  paste("set nowhere 1\n");
  EXPECT_TRUE(text().ends_with("set nowhere 1\nlocal: (Err) Not sent, since db7 can not be selected.\nlocal: "))
      << text();
  settle();
  EXPECT_EQ(alerts.messages(), Texts{"ERR DB index is out of range"});
}

TEST_F(Console, GoesOnAfterTheServerHasClosedTheConnection) {
  open(redis.port());
  tab->selectDatabase(1);
  paste("set k v\n");
  redis.kill();
  redis.start();
  type("get k");
  press(Qt::Key_Return);
  EXPECT_TRUE(text().ends_with("get k\nlocal: Can not connect to server\nlocal: ")) << text();
  settle();
  EXPECT_EQ(alerts.messages(), Texts{"Can not connect to server"});
  EXPECT_EQ(outlets().labStatus.stringValue(), "Status:Connected");
  paste("set k w\n");
  EXPECT_EQ(redis.command({"GET", "k"}, 1), "$1\r\nw\r\n");
}

TEST_F(Console, OnlyEchoesWithoutAServer) {
  tab = std::make_shared<OperationTabViewController>();
  show(*tab->view().widget(), {900, 560});
  click(*console().widget());
  press(Qt::Key_End, Qt::ControlModifier);
  paste("a\n");
  EXPECT_EQ(text(), "Welcome: a\n: ");
  type("b");
  press(Qt::Key_Return);
  EXPECT_EQ(text(), "Welcome: a\n: b");
}

}  // namespace
}  // namespace tarn::test
