#include "tests/support/RedisServer.h"
#include "tests/support/RespPeer.h"
#include "tests/support/program/Program.h"

#include <QAccessible>
#include <QClipboard>

#include <filesystem>
#include <iostream>

namespace tarn::test {

namespace fs = std::filesystem;

const std::string secret = "tr0ub4dor-ключ";

// One user's day, and what of it is to be seen by others.
class Day : public ProgramTest {
protected:
  Day() {
    testing::internal::CaptureStdout();
    client.command({"AUTH", secret});
    client.commands({{"HSET", "user:1", "name", "Ada", "city", "London"}, {"SET", "visits", "7"}});
  }
  ~Day() override {
    dropWindow();
    const std::string log = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(!log.empty() && log.find(secret) == std::string::npos);
    if (HasFailure()) std::cout << log;
  }

  // No title, tool tip or word of a screen reader shows the password, and no other user may read the store.
  void expectDiscretion() {
    for (QWidget* widget : QApplication::allWidgets()) {
      // The console shows what was typed in it; and the field for the password in clear isn't on the screen.
      if (widget->objectName() == QLatin1String("txtViewCli") || !widget->isVisible()) continue;
      QString shown = widget->windowTitle() + widget->toolTip() + widget->statusTip() + widget->accessibleDescription();
      if (QAccessibleInterface* said = QAccessible::queryAccessibleInterface(widget)) {
        for (const auto text : {QAccessible::Name, QAccessible::Value, QAccessible::Description, QAccessible::Help})
          shown += said->text(text);
      }
      EXPECT_FALSE(shown.contains(QString::fromStdString(secret))) << widget->objectName().toStdString();
    }
    const auto permissions = [](const fs::path& path) { return fs::status(path).permissions(); };
    EXPECT_EQ(permissions(dataHome.storeFile()), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(permissions(dataHome.storeFile().parent_path()), fs::perms::owner_all);
  }

  // What a test of the connection in the form says.
  std::string tested() {
    click(form().btnTestConnection);
    const std::string text = alerts.shown().size() == 1 ? alerts.messages()[0] : "not one message";
    alerts.clear();
    return text;
  }

  RedisServer guarded{{"--requirepass", secret, "--databases", "2"}};
  RedisServer unguarded{{"--databases", "1"}};
  LoopbackPort unused;
  RespClient client{guarded.port()};
};

TEST_F(Day, FromAnEmptyStoreToTheNextMorning) {
  see([&] { openWindow(); }, "");

  // The first favourite, by keyboard.
  openForm(window().btnNew);
  fillIn({"shop", "127.0.0.1", std::to_string(guarded.port()), secret});
  expectDiscretion();
  EXPECT_EQ(tested(), "Test Connection Success.");
  see([] { keys("Return"); }, "shop");
  expectDiscretion();

  // The second one has a wrong port, and a password where none is asked for.
  toFront();
  chooseInMainMenu("File", "New Connection");
  ASSERT_TRUE(waitUntil([&] { return form().window.widget()->isActiveWindow(); }));
  fillIn({"till", "127.0.0.1", std::to_string(unused.number()), secret});
  EXPECT_EQ(tested(), "Can not connect to Server(till).");
  retype(form().txtPort, std::to_string(unguarded.port()));
  EXPECT_NE(tested().find("AUTH"), std::string::npos);
  click(form().btnShowAuth);
  retype(form().txtAuthToShow, "");
  bool isWaitingThen = true;
  alerts.whileNextIsUp([&] { isWaitingThen = QApplication::overrideCursor() != nullptr; });
  EXPECT_EQ(tested(), "Test Connection Success.");
  EXPECT_FALSE(isWaitingThen);
  // None of the connections for a test stayed.
  EXPECT_TRUE(waitUntil([&] {
    return client.command({"INFO", "clients"}).find("connected_clients:1\r") != std::string::npos;
  }));
  click(form().btnSave);
  toFront();

  // Connect, browse, edit.
  openDatabase("shop", "db0(2)");
  see("shop *db0(2) db1(0) till | [shop] | Connected 2 db0 user:1 visits queue");
  readKey("user:1", "Data Size: 17byte(s) Data Count:2");
  typeInCell(tab().valueDataHashTable, "London", 1, "Ockham");
  save();
  EXPECT_EQ(client.command({"HGET", "user:1", "city"}), "$6\r\nOckham\r\n");

  // Lines from a note, pasted into the console.
  QApplication::clipboard()->setText(QString::fromStdString(
      "AUTH " + secret + "\nINCR visits\nRPUSH queue 'to ada' \"to grace\"\nLRANGE queue 0 -1\n"));
  click(tab().txtViewCli);
  keys("Ctrl+End");
  chooseInMainMenu("Edit", "Paste");
  type("GET visits");
  keys("Return");
  EXPECT_EQ(tab().txtViewCli.string(),
            "Welcome: AUTH " + secret +
                "\nshop: OK\nshop: INCR visits\nshop: (int)8\nshop: RPUSH queue 'to ada' \"to grace\"\nshop: (int)3\n"
                "shop: LRANGE queue 0 -1\nshop: \n1)\t'to\n2)\tada'\n3)\tto grace\nshop: GET visits\nshop: 8\nshop: ");
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
  see("*shop floor db0(3) db1(0) till | [shop floor] | Connected 2 db0 queue");
  expectDiscretion();
  chooseInMainMenu("Help", "Sponsor Tarn");
  EXPECT_EQ(alerts.messages(), Texts{"Tips can not be paid here: this platform has no store."});
  alerts.clear();

  // The next morning all of it is there.
  see([&] { restart(); }, "shop floor till");
  openDatabase("shop floor", "db0(3)");
  see("shop floor *db0(3) db1(0) till | [shop floor] | Connected 2 db0 queue user:1 visits queue");
  EXPECT_EQ(tab().popKeyDataCharset.titleOfSelectedItem(), "GBK");
  readKey("user:1", "Data Size: 17byte(s) Data Count:2");
  EXPECT_EQ(texts(tab().valueDataHashTable, 1), (Texts{"Ada", "Ockham"}));
  clickRow("shop floor");
  see([&] { click(window().btnRem); }, "till");
  expectDiscretion();
}

}  // namespace tarn::test
