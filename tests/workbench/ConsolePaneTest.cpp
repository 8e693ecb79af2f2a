#include "tests/support/RedisServer.h"
#include "tests/workbench/TabFixture.h"
#include "wire/ServerItemHost.h"

#include <QClipboard>
#include <QGuiApplication>

namespace tarn::test {
namespace {

class Console : public TabFixture, public ServerItemHost {
protected:
  Console() {
    install(this);
    openTab(redis.port());
    server->setConnectionName("local");
    click(console());
    press(Qt::Key_End, Qt::ControlModifier);
  }
  ~Console() override { install(nullptr); }

  // What the main window does for a tab.
  void reloadServerRow(const std::shared_ptr<ServerItem>&) override {}
  void refreshServerRow(const std::shared_ptr<ServerItem>&) override {}
  void showStatusInTab(const std::shared_ptr<ServerItem>&) override { tab->updateStatusLabel(); }
  void bringDatabasesUpToDate(const std::shared_ptr<ServerItem>&, bool) override {}
  void showSelectedDatabase(const std::shared_ptr<ServerItem>&) override {
    tab->selectDatabase(server->currentDbIdx());
  }

  NSTextView& console() { return outlets().txtViewCli; }

  // Pastes the text, or types it where it ends with a "!", which stands for Enter. What the console says behind that.
  std::string said(const std::string& text) {
    const std::size_t before = console().string().size();
    QGuiApplication::clipboard()->setText(QString::fromStdString(text));
    const bool isTyped = text.ends_with('!');
    isTyped ? type(text.substr(0, text.size() - 1)) : press(Qt::Key_V, Qt::ControlModifier);
    if (isTyped) press(Qt::Key_Return);
    return console().string().substr(before);
  }

  RedisServer redis{{"--databases", "4"}};
};

// A CRLF is two line ends, so the open line runs behind what was pasted.
TEST_F(Console, RunsTypedLinesAndPastedOnesAndLeavesTheLastOneOpen) {
  EXPECT_EQ(console().string(), "Welcome: ");
  type("set k 12");
  press(Qt::Key_Backspace);
  press(Qt::Key_Left);
  // clang-format off
  const std::vector<std::pair<const char*, const char*>> cases{
      {"!", "\nlocal: OK\nlocal: "}, {"get k!", "get k\nlocal: 1\nlocal: "}, {"!", "\nlocal: \nlocal: "}, {"ping", "ping"},
      {"set a 1\nget a\n", "set a 1\nlocal: OK\nlocal: get a\nlocal: 1\nlocal: "},
      {"set b 2\nget", "set b 2\nlocal: OK\nlocal: get"},
      {" b!", " b\nlocal: 2\nlocal: "}, {"get c\r\n", "get c\nlocal: (nil)\nlocal: \nlocal: \nlocal: "},
      {"get c\n\nget d", "get c\nlocal: (nil)\nlocal: get d\nlocal: (nil)\nlocal: "}};
  // clang-format on
  for (const auto& [text, added] : cases)
    EXPECT_EQ(said(text), added) << text;
}

TEST_F(Console, ProtectsWhatWasSaidAndKeepsTheOpenLineInSight) {
  redis.command({"SET", "k", "值 😀"});
  EXPECT_EQ(said("get k!"), "get k\nlocal: 值 😀\nlocal: ");
  const std::string shown = console().string();
  press(Qt::Key_Backspace);
  press(Qt::Key_Left);
  EXPECT_EQ(said("x!") + said("y"), "");
  press(Qt::Key_A, Qt::ControlModifier);
  type("z");
  press(Qt::Key_X, Qt::ControlModifier);
  press(Qt::Key_Delete);
  EXPECT_EQ(console().string(), shown);
  press(Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(said("get \"k\"!"), "get \"k\"\nlocal: 值 😀\nlocal: ");
  for (int i = 0; i < 50; ++i)
    said("echo " + std::to_string(i) + "\n");
  const QRect caret = console().widget()->inputMethodQuery(Qt::ImCursorRectangle).toRect();
  EXPECT_TRUE(console().widget()->rect().contains(caret)) << caret.y();
}

TEST_F(Console, ActsOnTheDatabaseOnShowAndCarriesItAlongAlsoOverANewConnection) {
  tab->selectDatabase(2);
  said("set here 1\nselect 3\nset there 1\n");
  EXPECT_EQ(redis.command({"GET", "here"}, 2), "$1\r\n1\r\n");
  EXPECT_EQ(redis.command({"GET", "there"}, 3), "$1\r\n1\r\n");
  EXPECT_EQ(tab->shownDatabase(), 3);
  tab->selectDatabase(7);
  EXPECT_EQ(said("set nowhere 1\n"), "set nowhere 1\nlocal: (Err) Not sent, since db7 can not be selected.\nlocal: ");
  settle();
  EXPECT_EQ(alerts.messages(), Texts{"ERR DB index is out of range"});

  tab->selectDatabase(1);
  redis.kill();
  redis.start();
  EXPECT_EQ(said("get k!"), "get k\nlocal: Can not connect to server\nlocal: ");
  settle();
  EXPECT_EQ(alerts.messages().back(), "Can not connect to server");
  EXPECT_EQ(outlets().labStatus.stringValue(), "Status:Connected");
  said("set k w\n");
  EXPECT_EQ(redis.command({"GET", "k"}, 1), "$1\r\nw\r\n");
}

}  // namespace
}  // namespace tarn::test
