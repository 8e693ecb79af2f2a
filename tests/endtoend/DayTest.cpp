#include "tests/endtoend/Desk.h"
#include "tests/support/LoopbackPort.h"
#include "tests/support/RedisServer.h"
#include "tests/support/RespClient.h"
#include "tests/support/widgets/Hand.h"

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
class Day : public Desk {
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

  // Goes on from the field that has the keyboard.
  static void fillIn(const Texts& texts) {
    for (const std::string& text : texts) {
      type(text);
      press(Qt::Key_Tab);
    }
  }

  // No title, tool tip or word of a screen reader tells the password, and no other user may read the store.
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
    for (const auto& item : window().outlets().mainTab.tabViewItems())
      EXPECT_EQ((item->label() + item->toolTip()).find(secret), std::string::npos);
    const auto permissions = [](const fs::path& path) { return fs::status(path).permissions(); };
    EXPECT_EQ(permissions(dataHome.storeFile()), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(permissions(dataHome.storeFile().parent_path()), fs::perms::owner_all);
  }

  // What the one message says that is up since the last call.
  std::string told() {
    const std::string message = alerts.shown().size() == 1 ? alerts.shown()[0].message : "not one message";
    alerts.clear();
    return message;
  }

  RedisServer guarded{{"--requirepass", secret, "--databases", "2"}};
  RedisServer unguarded{{"--databases", "2"}};
  LoopbackPort nobody;
  RespClient client{guarded.port()};
};

}  // namespace

TEST_F(Day, FromAnEmptyStoreToTheNextMornings) {
  openWindow();
  EXPECT_EQ(treeRows(), Texts{"My Favourite"});
  picture("day-01-first-start");

  // The first favourite, by keyboard.
  ASSERT_NO_FATAL_FAILURE(openForm(window().outlets().btnNew));
  fillIn({"shop", "127.0.0.1", std::to_string(guarded.port()), secret});
  grab(*form().window.widget(), "day-02-form");
  expectDiscretion();
  click(form().btnTestConnection);
  EXPECT_EQ(told(), "Test Connection Success.");
  press(Qt::Key_Return);
  ASSERT_EQ(window().newConnectionWindowController(), nullptr);
  EXPECT_EQ(treeRows(), (Texts{"My Favourite", "shop"}));
  expectDiscretion();

  // The second one has a wrong port, and a password where none is asked for.
  toFront();
  chooseInMainMenu("File", "New Connection");
  ASSERT_TRUE(waitUntil([&] { return form().window.widget()->isActiveWindow(); }));
  const std::string wrongPort = std::to_string(nobody.number());
  fillIn({"till", "127.0.0.1", wrongPort, secret});
  click(form().btnTestConnection);
  EXPECT_EQ(told(), "Can not connect to Server(till).");
  EXPECT_EQ(form().txtCnnName.stringValue(), "till");
  EXPECT_EQ(form().txtPort.stringValue(), wrongPort);
  EXPECT_EQ(form().txtAuth.stringValue(), secret);
  retype(form().txtPort, std::to_string(unguarded.port()));
  click(form().btnTestConnection);
  EXPECT_NE(told().find("AUTH"), std::string::npos);
  click(form().btnShowAuth);
  grab(*form().window.widget(), "day-03-password-shown");
  retype(form().txtAuthToShow, "");
  click(form().btnTestConnection);
  EXPECT_EQ(told(), "Test Connection Success.");
  click(form().btnSave);
  EXPECT_EQ(treeRows(), (Texts{"My Favourite", "shop", "till"}));
  toFront();
  picture("day-04-two-favourites");

  // Connect, browse, edit.
  ASSERT_NO_FATAL_FAILURE(openDatabase("shop", "db0(2)"));
  ASSERT_TRUE(lists({"user:1", "visits"}));
  ASSERT_NO_FATAL_FAILURE(readKey("user:1", "Data Size: 17byte(s) Data Count:2"));
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
  picture("day-05-console");
  expectDiscretion();

  // The favourite is edited while its tab is open.
  clickTreeRow("shop");
  ASSERT_NO_FATAL_FAILURE(openForm(window().outlets().btnEdit));
  EXPECT_EQ(form().txtAuth.stringValue(), secret);
  retype(form().txtCnnName, "shop floor");
  chooseTitle(form().popDefaultCharset, "GBK");
  grab(*form().window.widget(), "day-06-form-edit");
  expectDiscretion();
  click(form().btnSave);
  toFront();
  EXPECT_EQ(treeRows()[1], "shop floor");
  EXPECT_EQ(window().outlets().mainTab.selectedTabViewItem()->label(), "shop floor");
  EXPECT_TRUE(tab().labServerName.stringValue().starts_with("Name:shop floor server:127.0.0.1 port:"));
  picture("day-07-edited");
  expectDiscretion();

  chooseInMainMenu("Help", "Sponsor Tarn");
  EXPECT_EQ(told(), "Tips can not be paid here: this platform has no store.");

  // The next morning all of it is there.
  restart();
  EXPECT_EQ(treeRows(), (Texts{"My Favourite", "shop floor", "till"}));
  EXPECT_EQ(server()->defaultCharset(), "GBK");
  EXPECT_EQ(server(1)->serverPort(), unguarded.port());
  EXPECT_EQ(server(1)->auth(), "");
  ASSERT_NO_FATAL_FAILURE(openDatabase("shop floor", "db0(3)"));
  ASSERT_TRUE(lists({"queue", "user:1", "visits"}));
  ASSERT_NO_FATAL_FAILURE(readKey("user:1", "Data Size: 17byte(s) Data Count:2"));
  EXPECT_EQ(column(tab().valueDataHashTable, 1), (Texts{"Ada", "Ockham"}));
  picture("day-08-next-morning");
  clickTreeRow("shop floor");
  click(window().outlets().btnRem);
  EXPECT_EQ(treeRows(), (Texts{"My Favourite", "till"}));
  EXPECT_TRUE(window().outlets().mainTab.tabViewItems().empty());
  picture("day-09-removed");
  expectDiscretion();

  // And what was removed is gone.
  restart();
  EXPECT_EQ(treeRows(), (Texts{"My Favourite", "till"}));
  ASSERT_NO_FATAL_FAILURE(openDatabase("till", "db0(0)"));
  ASSERT_TRUE(becomes(tab().labStatus, "Status:Connected"));
  ASSERT_TRUE(lists({}));
  picture("day-10-empty-database");
  EXPECT_EQ(alerts.messages(), Texts{});
  expectDiscretion();
}

}  // namespace tarn::test
