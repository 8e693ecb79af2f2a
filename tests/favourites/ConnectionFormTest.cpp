#include "tests/favourites/FavouritesFixture.h"
#include "tests/support/LoopbackPort.h"
#include "tests/support/RedisServer.h"
#include "tests/support/widgets/Hand.h"

#include <QApplication>
#include <QCursor>

namespace tarn::test {

using Texts = std::vector<std::string>;

class ConnectionFormTest : public FavouritesTest {
protected:
  NewConnectionWindowController* controller() { return window().newConnectionWindowController(); }
  NewConnectionLayout& form() { return controller()->form().outlets(); }
  bool isOpen() { return controller() && form().window.isVisible(); }
  void expectOpen() {
    ASSERT_TRUE(isOpen());
    ASSERT_TRUE(waitUntil([this] { return form().window.widget()->isActiveWindow(); }));
  }

  // By the button, as a user does.
  void openNew() {
    click(*window().outlets().btnNew.widget());
    expectOpen();
  }
  void openEdit(int row) {
    selectRow(row);
    click(*window().outlets().btnEdit.widget());
    expectOpen();
  }
  // Goes on from the field that has the keyboard.
  void typeFields(std::initializer_list<const char*> texts) {
    for (const char* text : texts) {
      type(text);
      press(Qt::Key_Tab);
    }
  }
  void save() { click(*form().btnSave.widget()); }
  void testConnection() { click(*form().btnTestConnection.widget()); }

  // What the next start would show, in the store's own words.
  Texts stored() {
    Texts texts;
    for (const auto& favourite : FavouritesStore().loadFavourites()) {
      texts.push_back(favourite->connectionName() + "|" + favourite->serverIp() + "|" +
                      std::to_string(favourite->serverPort()) + "|" + favourite->auth() + "|" +
                      favourite->defaultCharset());
    }
    return texts;
  }
};

TEST_F(ConnectionFormTest, ANewConnectionIsTypedAndSavedByKeyboard) {
  openWindow();
  openNew();
  EXPECT_EQ(form().window.title(), "Tarn - New Connection");
  EXPECT_TRUE(form().txtCnnName.isFirstResponder());
  EXPECT_EQ(itemCount(form().popDefaultCharset), 46);
  EXPECT_EQ(form().popDefaultCharset.titleOfSelectedItem(), "utf8");
  // The formatter takes 6379 out of these.
  typeFields({"我的服务器", "localhost", "0063799", "päss\"w"});
  EXPECT_EQ(form().txtPort.stringValue(), "0");
  form().txtPort.becomeFirstResponder();
  press(Qt::Key_Backspace);
  type("x6379");
  form().popDefaultCharset.selectItemWithTitle("GBK");
  press(Qt::Key_Return);

  EXPECT_FALSE(controller());
  EXPECT_TRUE(alerts.shown().empty());
  EXPECT_EQ(rows(), (Texts{"My Favourite", "我的服务器"}));
  EXPECT_EQ(stored(), Texts{"我的服务器|localhost|6379|päss\"w|GBK"});
  EXPECT_EQ(storeHost.saves(), 1);
  EXPECT_EQ(server()->auth(), "päss\"w");
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::notConnected);
  // The next form is a fresh one.
  openNew();
  EXPECT_EQ(form().txtCnnName.stringValue(), "");
}

TEST_F(ConnectionFormTest, AMessageLeavesTheFormAsItIs) {
  store("local", 1);
  openWindow();
  openNew();
  typeFields({"local", "host", "", "secret"});
  save();
  testConnection();
  EXPECT_EQ(alerts.messages(), (Texts{"Enter the Server Port first.", "Enter the Server Port first."}));
  alerts.clear();

  form().txtPort.becomeFirstResponder();
  type("0");
  save();
  EXPECT_EQ(alerts.messages(),
            Texts{"There is already a Favourite called 'local'，can not add the same name to favourite"});
  ASSERT_TRUE(isOpen());
  EXPECT_EQ(form().txtCnnName.stringValue(), "local");
  EXPECT_EQ(form().txtIp.stringValue(), "host");
  EXPECT_EQ(form().txtAuth.stringValue(), "secret");
  EXPECT_EQ(stored().size(), 1U);

  // Names differ by case, and a port of 0 and an empty host are taken.
  form().txtCnnName.setStringValue("Local");
  form().txtIp.setStringValue("");
  save();
  EXPECT_FALSE(controller());
  EXPECT_EQ(stored(), (Texts{"local|127.0.0.1|1||utf8", "Local||0|secret|utf8"}));
}

TEST_F(ConnectionFormTest, AnEditReachesStoreListTreeAndTheOpenTab) {
  const RedisServer redis;
  redis.command({"set", "key", "value"});
  store("local", redis.port());
  store("other", 1, "secret");
  openWindow();
  connect();
  clickRow(2);
  ASSERT_TRUE(waitForKeys(1));
  const NSUUID id = server()->serverId();

  openEdit(1);
  EXPECT_EQ(form().window.title(), "Tarn - Edit Connection");
  EXPECT_EQ(form().txtCnnName.stringValue(), "local");
  EXPECT_EQ(form().txtPort.stringValue(), std::to_string(redis.port()));
  form().txtCnnName.setStringValue("other");
  save();
  EXPECT_EQ(alerts.shown().size(), 1U);
  form().txtCnnName.setStringValue("renamed");
  form().txtIp.setStringValue("example.org");
  form().txtPort.setStringValue("7000");
  form().popDefaultCharset.selectItemWithTitle("big5");
  save();

  EXPECT_FALSE(controller());
  EXPECT_EQ(stored(), (Texts{"renamed|example.org|7000||big5", "other|127.0.0.1|1|secret|utf8"}));
  EXPECT_EQ(server()->serverId(), id);
  EXPECT_EQ(rows()[1], "renamed");
  EXPECT_EQ(tabLabels(), Texts{"renamed"});
  EXPECT_EQ(window().outlets().mainTab.tabViewItems()[0]->toolTip(), "renamed");
  OperationTabLayout& tab = tabOf()->outlets();
  EXPECT_EQ(tab.labServerName.stringValue(), "Name:renamed server:example.org port:7000");
  EXPECT_EQ(tab.popKeyDataCharset.titleOfSelectedItem(), "big5");
  EXPECT_EQ(tab.tableKeys.numberOfRows(), 0);
  // The live connection stays.
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::connected);
  EXPECT_TRUE(server()->isAlive());
}

TEST_F(ConnectionFormTest, ThePasswordOfTheFieldInSightCounts) {
  store("local", 1, "secret");
  openWindow();
  openEdit(1);
  EXPECT_EQ(form().txtAuth.stringValue(), "secret");
  EXPECT_TRUE(form().txtAuthToShow.isHidden());
  form().txtAuth.becomeFirstResponder();
  click(*form().btnShowAuth.widget());
  EXPECT_TRUE(form().txtAuth.isHidden());
  EXPECT_EQ(form().txtAuthToShow.stringValue(), "secret");
  EXPECT_TRUE(form().txtAuthToShow.isFirstResponder());
  press(Qt::Key_End);
  type("1");
  click(*form().btnShowAuth.widget());
  EXPECT_EQ(form().txtAuth.stringValue(), "secret1");
  click(*form().btnShowAuth.widget());
  press(Qt::Key_End);
  type("2");

  // No control, title or tool tip but the field in clear holds it.
  for (const QWidget* widget : form().window.widget()->findChildren<QWidget*>()) {
    EXPECT_FALSE(widget->toolTip().contains(QLatin1String("secret"))) << widget->objectName().toStdString();
  }
  EXPECT_EQ(form().window.title().find("secret"), std::string::npos);
  testing::internal::CaptureStdout();
  save();
  settle();
  EXPECT_EQ(testing::internal::GetCapturedStdout().find("secret"), std::string::npos);
  EXPECT_EQ(stored(), Texts{"local|127.0.0.1|1|secret12|utf8"});
}

TEST_F(ConnectionFormTest, AnOpenFormIsTakenOver) {
  store("local", 1, "secret");
  store("other", 2);
  openWindow();
  openEdit(1);
  const auto* const first = controller();
  click(*form().btnShowAuth.widget());
  openEdit(2);
  EXPECT_EQ(controller(), first);
  EXPECT_EQ(form().txtCnnName.stringValue(), "other");
  EXPECT_EQ(controller()->form().serverId(), server(1)->serverId());
  EXPECT_FALSE(form().btnShowAuth.state());

  // A new connection doesn't take the password of another one along.
  openEdit(1);
  click(*form().btnShowAuth.widget());
  openNew();
  EXPECT_EQ(controller(), first);
  EXPECT_EQ(form().window.title(), "Tarn - New Connection");
  EXPECT_FALSE(controller()->form().serverId());
  EXPECT_TRUE(form().txtAuthToShow.isHidden());
  EXPECT_FALSE(form().txtAuth.isHidden());
  EXPECT_EQ(form().txtAuthToShow.stringValue() + form().txtAuth.stringValue() + form().txtPort.stringValue(), "");
  EXPECT_TRUE(form().txtCnnName.isFirstResponder());
}

TEST_F(ConnectionFormTest, AnEditNeedsExactlyOneServer) {
  store("local", 1);
  store("other", 2);
  openWindow();
  const auto edit = [this](const std::vector<int>& rows) {
    window().outlets().serverSelection.selectRowIndexes(rows);
    click(*window().outlets().btnEdit.widget());
  };
  for (const auto& rows : {std::vector<int>{}, {0}, {1, 2}})
    edit(rows);
  EXPECT_FALSE(controller());
  const std::string message =
      "To Edit Connection, you should choose one and only one connection In the 'My Favourite' list. And not db.";
  EXPECT_EQ(alerts.messages(), Texts(3, message));
  EXPECT_EQ(alerts.shown()[0].style, static_cast<int>(NSAlert::Style::informational));
  // The root doesn't count beside it.
  edit({0, 1});
  EXPECT_TRUE(isOpen());
}

TEST_F(ConnectionFormTest, CancelEscapeAndTheCloseButtonKeepNothing) {
  openWindow();
  const std::function<void()> ways[] = {[this] { click(*form().btnCancel.widget()); }, [] { press(Qt::Key_Escape); },
                                        [this] { form().window.widget()->close(); }};
  for (const auto& end : ways) {
    openNew();
    typeFields({"name", "host", "1"});
    end();
    EXPECT_FALSE(controller());
    settle();
  }
  EXPECT_TRUE(stored().empty());
  EXPECT_EQ(rows(), Texts{"My Favourite"});
}

TEST_F(ConnectionFormTest, ATestTellsHowItWentAndSavesNothing) {
  const RedisServer redis({"--requirepass", "secret"});
  const LoopbackPort dead;
  openWindow();
  openNew();
  typeFields({"local", "127.0.0.1", std::to_string(redis.port()).c_str(), "wrong"});
  bool waitedThen = true;
  alerts.whileNextIsUp([&] { waitedThen = QApplication::overrideCursor() != nullptr; });
  testConnection();
  EXPECT_FALSE(waitedThen);
  form().txtAuth.setStringValue("secret");
  testConnection();
  form().txtPort.setStringValue(std::to_string(dead.number()));
  testConnection();
  const Texts messages = alerts.messages();
  ASSERT_EQ(messages.size(), 3U);
  EXPECT_NE(messages[0].find("WRONGPASS"), std::string::npos) << messages[0];
  EXPECT_EQ(messages[1], "Test Connection Success.");
  EXPECT_NE(messages[2].find("local"), std::string::npos) << messages[2];

  ASSERT_TRUE(isOpen());
  EXPECT_EQ(form().txtAuth.stringValue(), "secret");
  EXPECT_TRUE(stored().empty());
  EXPECT_TRUE(window().myFavourite()->servers.empty());
  // None of the three connections stayed: the one that counts them is the only one.
  EXPECT_TRUE(waitUntil([&] {
    return redis.command({"info", "clients"}).find("connected_clients:1\r") != std::string::npos;
  }));
}

TEST_F(ConnectionFormTest, AFavouriteRemovedBehindItsFormIsNotMadeAgain) {
  store("local", 1);
  openWindow();
  openEdit(1);
  selectRow(1);
  click(*window().outlets().btnRem.widget());
  save();
  EXPECT_FALSE(controller());
  EXPECT_TRUE(stored().empty());
  EXPECT_EQ(rows(), Texts{"My Favourite"});
}

}  // namespace tarn::test
