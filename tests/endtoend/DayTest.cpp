#include "tests/support/LoopbackPort.h"
#include "tests/support/RedisServer.h"
#include "tests/support/RespPeer.h"
#include "tests/support/program/ProgramTest.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>

#include <filesystem>
#include <iostream>
#include <string>

namespace tarn::test {

namespace {

namespace fs = std::filesystem;

const std::string secret = "tr0ub4dor-ключ";

// One user's day, and what of it is to be seen by others.
class Day : public ProgramTest {
protected:
  Day() {
    testing::internal::CaptureStdout();
    client.command({"AUTH", secret});
    client.pipeline({{"HSET", "user:1", "name", "Ada", "city", "London"}, {"SET", "visits", "7"}});
  }
  ~Day() override {
    dropWindow();
    const std::string log = testing::internal::GetCapturedStdout();
    EXPECT_FALSE(log.empty());
    EXPECT_EQ(log.find(secret), std::string::npos);
    if (HasFailure()) std::cout << log;
  }

  // No title, tool tip or word of a screen reader shows the password, and no other user may read the store.
  void expectDiscretion() {
    for (QWidget* widget : QApplication::allWidgets()) {
      QString shown = widget->windowTitle() + widget->toolTip() + widget->statusTip() + widget->accessibleDescription();
      if (QAccessibleInterface* said = QAccessible::queryAccessibleInterface(widget)) {
        for (const auto text : {QAccessible::Name, QAccessible::Value, QAccessible::Description, QAccessible::Help})
          shown += said->text(text);
      }
      // The console shows what was typed in it; and the field for the password in clear isn't on the screen.
      if (widget->objectName() == QLatin1String("txtViewCli") || !widget->isVisible()) continue;
      EXPECT_FALSE(shown.contains(QString::fromStdString(secret))) << widget->objectName().toStdString();
    }
    for (const auto& item : window().mainTab.tabViewItems())
      EXPECT_EQ((item->label() + item->toolTip()).find(secret), std::string::npos);
    const auto permissions = [](const fs::path& path) { return fs::status(path).permissions(); };
    EXPECT_EQ(permissions(dataHome.storeFile()), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(permissions(dataHome.storeFile().parent_path()), fs::perms::owner_all);
  }

  // The one message since the last call.
  std::string message() {
    const std::string text = alerts.shown().size() == 1 ? alerts.shown()[0].message : "not one message";
    alerts.clear();
    return text;
  }

  RedisServer guarded{{"--requirepass", secret, "--databases", "2"}};
  RedisServer unguarded{{"--databases", "2"}};
  LoopbackPort unused;
  RespClient client{guarded.port()};
};

}  // namespace

TEST_F(Day, FromAnEmptyStoreToTheNextMornings) {
  openWindow();
  EXPECT_EQ(rows(), Texts{"My Favourite"});

  // The first favourite, by keyboard.
  openForm(window().btnNew);
  fillIn({"shop", "127.0.0.1", std::to_string(guarded.port()), secret});
  expectDiscretion();
  click(form().btnTestConnection);
  EXPECT_EQ(message(), "Test Connection Success.");
  press(Qt::Key_Return);
  ASSERT_EQ(content().newConnectionWindowController(), nullptr);
  EXPECT_EQ(rows(), (Texts{"My Favourite", "shop"}));
  expectDiscretion();

  // The second one has a wrong port, and a password where none is asked for.
  toFront();
  chooseInMainMenu("File", "New Connection");
  ASSERT_TRUE(waitUntil([&] { return form().window.widget()->isActiveWindow(); }));
  const std::string wrongPort = std::to_string(unused.number());
  fillIn({"till", "127.0.0.1", wrongPort, secret});
  click(form().btnTestConnection);
  EXPECT_EQ(message(), "Can not connect to Server(till).");
  EXPECT_EQ(form().txtCnnName.stringValue(), "till");
  EXPECT_EQ(form().txtPort.stringValue(), wrongPort);
  EXPECT_EQ(form().txtAuth.stringValue(), secret);
  retype(form().txtPort, std::to_string(unguarded.port()));
  click(form().btnTestConnection);
  EXPECT_NE(message().find("AUTH"), std::string::npos);
  click(form().btnShowAuth);
  retype(form().txtAuthToShow, "");
  bool isWaitingThen = true;
  alerts.whileNextIsUp([&] { isWaitingThen = QApplication::overrideCursor() != nullptr; });
  click(form().btnTestConnection);
  EXPECT_FALSE(isWaitingThen);
  EXPECT_EQ(message(), "Test Connection Success.");
  // None of the connections for a test stayed.
  EXPECT_TRUE(waitUntil([&] {
    return client.command({"INFO", "clients"}).find("connected_clients:1\r") != std::string::npos;
  }));
  click(form().btnSave);
  EXPECT_EQ(rows(), (Texts{"My Favourite", "shop", "till"}));
  toFront();

  // Connect, browse, edit.
  openDatabase("shop", "db0(2)");
  waitForKeys({"user:1", "visits"});
  readKey("user:1", "Data Size: 17byte(s) Data Count:2");
  typeInCell(tab().valueDataHashTable, "London", 1, "Ockham");
  press(Qt::Key_Return);
  save();
  EXPECT_EQ(client.command({"HGET", "user:1", "city"}), "$6\r\nOckham\r\n");

  // Lines from a note, pasted into the console.
  QApplication::clipboard()->setText(QString::fromStdString(
      "AUTH " + secret + "\nINCR visits\nRPUSH queue 'to ada' \"to grace\"\nLRANGE queue 0 -1\n"));
  click(tab().txtViewCli);
  press(Qt::Key_End, Qt::ControlModifier);
  chooseInMainMenu("Edit", "Paste");
  type("GET visits");
  press(Qt::Key_Return);
  EXPECT_EQ(tab().txtViewCli.string(), "Welcome: AUTH " + secret +
                                           R"(
shop: OK
shop: INCR visits
shop: (int)8
shop: RPUSH queue 'to ada' "to grace"
shop: (int)3
shop: LRANGE queue 0 -1
shop: )"
                                           "\n1)\t'to\n2)\tada'\n3)\tto grace\nshop: GET visits\nshop: 8\nshop: ");
  EXPECT_EQ(client.command({"GET", "visits"}), "$1\r\n8\r\n");
  expectDiscretion();

  // The favourite is edited while its tab is open.
  clickRow("shop");
  openForm(window().btnEdit);
  EXPECT_EQ(form().txtAuth.stringValue(), secret);
  retype(form().txtCnnName, "shop floor");
  choose(form().popDefaultCharset, "GBK");
  expectDiscretion();
  click(form().btnSave);
  toFront();
  EXPECT_EQ(rows()[1], "shop floor");
  EXPECT_EQ(window().mainTab.selectedTabViewItem()->label(), "shop floor");
  EXPECT_TRUE(tab().labServerName.stringValue().starts_with("Name:shop floor server:127.0.0.1 port:"));
  expectDiscretion();

  chooseInMainMenu("Help", "Sponsor Tarn");
  EXPECT_EQ(message(), "Tips can not be paid here: this platform has no store.");

  // The next morning all of it is there.
  restart();
  EXPECT_EQ(rows(), (Texts{"My Favourite", "shop floor", "till"}));
  EXPECT_EQ(server()->defaultCharset(), "GBK");
  EXPECT_EQ(server(1)->serverPort(), unguarded.port());
  EXPECT_EQ(server(1)->auth(), "");
  openDatabase("shop floor", "db0(3)");
  waitForKeys({"queue", "user:1", "visits"});
  readKey("user:1", "Data Size: 17byte(s) Data Count:2");
  EXPECT_EQ(texts(tab().valueDataHashTable, 1), (Texts{"Ada", "Ockham"}));
  clickRow("shop floor");
  click(window().btnRem);
  EXPECT_EQ(rows(), (Texts{"My Favourite", "till"}));
  EXPECT_TRUE(window().mainTab.tabViewItems().empty());
  expectDiscretion();

  // And what was removed is gone.
  restart();
  EXPECT_EQ(rows(), (Texts{"My Favourite", "till"}));
  openDatabase("till", "db0(0)");
  waitForText(tab().labStatus, "Status:Connected");
  waitForKeys(0);
  EXPECT_EQ(alerts.messages(), Texts{});
  expectDiscretion();
}

}  // namespace tarn::test
