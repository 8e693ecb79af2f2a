#include "favourites/FavouritesStore.h"
#include "tests/support/RedisServer.h"
#include "tests/support/program/ProgramTest.h"

namespace tarn::test {

namespace {

class ConnectionFormTest : public ProgramTest {
protected:
  bool isOpen() { return content().newConnectionWindowController() && form().window.isVisible(); }
  void openEdit(int row) {
    selectRows({row});
    openForm(window().btnEdit);
  }
  // What the form shows, its password fields last: the one that is in sight behind "+".
  Texts shown() {
    const auto text = [](const NSTextField& field) { return (field.isHidden() ? "" : "+") + field.stringValue(); };
    return {form().txtCnnName.stringValue(), form().txtIp.stringValue(),
            form().txtPort.stringValue(),    text(form().txtAuth),
            text(form().txtAuthToShow),      form().popDefaultCharset.titleOfSelectedItem()};
  }
  // What the next start would show.
  static Texts stored() {
    Texts texts;
    for (const auto& favourite : FavouritesStore().loadFavourites()) {
      texts.push_back(favourite->connectionName() + "|" + favourite->serverIp() + "|" +
                      std::to_string(favourite->serverPort()) + "|" + favourite->auth() + "|" +
                      favourite->defaultCharset());
    }
    return texts;
  }
};

}  // namespace

// The port's formatter refuses what is no port.
TEST_F(ConnectionFormTest, ANewConnectionIsTypedMendedAndSaved) {
  store("local", 1);
  openWindow();
  openForm(window().btnNew);
  EXPECT_EQ(form().window.title(), "Tarn - New Connection");
  EXPECT_EQ(itemCount(form().popDefaultCharset), 46);
  fillIn({"local", "host", "x", "päss\"w"});
  click(form().btnSave);
  click(form().btnTestConnection);
  form().txtPort.becomeFirstResponder();
  type("063799");
  click(form().btnSave);
  EXPECT_EQ(alerts.messages(),
            (Texts{"Enter the Server Port first.", "Enter the Server Port first.",
                   "There is already a Favourite called 'local'，can not add the same name to favourite"}));
  EXPECT_EQ(shown(), (Texts{"local", "host", "0", "+päss\"w", "", "utf8"}));
  EXPECT_EQ(stored().size(), 1U);

  // Names differ by case, and a port of 0 and an empty host are taken.
  retype(form().txtCnnName, "Local 的");
  retype(form().txtIp, "");
  choose(form().popDefaultCharset, "GBK");
  press(Qt::Key_Return);
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(rows(), (Texts{"My Favourite", "local", "Local 的"}));
  EXPECT_EQ(stored(), (Texts{"local|127.0.0.1|1||utf8", "Local 的||0|päss\"w|GBK"}));
  EXPECT_EQ(server(1)->auth(), "päss\"w");
  EXPECT_EQ(server(1)->connectionStatus(), ConnectionStatus::notConnected);
}

TEST_F(ConnectionFormTest, AnEditReachesStoreListTreeAndTheOpenTab) {
  const RedisServer redis;
  redis.command({"set", "key", "value"});
  store("local", redis.port());
  store("other", 1, "secret");
  openWindow();
  connect();
  clickRow("db0(");
  waitForKeys(1);
  const NSUUID id = server()->serverId();

  openEdit(1);
  EXPECT_EQ(form().window.title(), "Tarn - Edit Connection");
  EXPECT_EQ(shown(), (Texts{"local", "127.0.0.1", std::to_string(redis.port()), "+", "", "utf8"}));
  form().txtCnnName.setStringValue("other");
  click(form().btnSave);
  EXPECT_EQ(alerts.shown().size(), 1U);
  form().txtCnnName.setStringValue("renamed");
  form().txtIp.setStringValue("example.org");
  form().txtPort.setStringValue("7000");
  form().popDefaultCharset.selectItemWithTitle("big5");
  click(form().btnSave);

  EXPECT_FALSE(isOpen());
  EXPECT_EQ(stored(), (Texts{"renamed|example.org|7000||big5", "other|127.0.0.1|1|secret|utf8"}));
  EXPECT_EQ(server()->serverId(), id);
  EXPECT_EQ(rows()[1], "renamed");
  EXPECT_EQ(tabLabels(), Texts{"renamed"});
  EXPECT_EQ(window().mainTab.selectedTabViewItem()->toolTip(), "renamed");
  EXPECT_EQ(tab().labServerName.stringValue(), "Name:renamed server:example.org port:7000");
  EXPECT_EQ(tab().popKeyDataCharset.titleOfSelectedItem(), "big5");
  EXPECT_EQ(tab().tableKeys.numberOfRows(), 0);
  // The live connection stays.
  EXPECT_EQ(server()->connectionStatus(), ConnectionStatus::connected);
  EXPECT_TRUE(server()->isAlive());
}

TEST_F(ConnectionFormTest, ThePasswordOfTheFieldInSightCounts) {
  store("local", 1, "secret");
  openWindow();
  openEdit(1);
  const auto passwords = [this] { return Texts{shown()[3], shown()[4]}; };
  EXPECT_EQ(passwords(), (Texts{"+secret", "secret"}));
  form().txtAuth.becomeFirstResponder();
  click(form().btnShowAuth);
  EXPECT_TRUE(form().txtAuthToShow.isFirstResponder());
  press(Qt::Key_End);
  type("1");
  EXPECT_EQ(passwords(), (Texts{"secret", "+secret1"}));
  click(form().btnShowAuth);
  EXPECT_EQ(passwords(), (Texts{"+secret1", "secret1"}));
  click(form().btnShowAuth);
  press(Qt::Key_End);
  type("2");
  click(form().btnSave);
  EXPECT_EQ(stored(), Texts{"local|127.0.0.1|1|secret12|utf8"});
}

TEST_F(ConnectionFormTest, AnOpenFormIsTakenOver) {
  store("local", 1, "secret");
  store("other", 2);
  openWindow();
  openEdit(1);
  auto* const first = content().newConnectionWindowController();
  click(form().btnShowAuth);
  openEdit(2);
  EXPECT_EQ(shown(), (Texts{"other", "127.0.0.1", "2", "+", "", "utf8"}));
  EXPECT_EQ(first->form().serverId(), server(1)->serverId());

  // A new connection doesn't take the password of another one along.
  openEdit(1);
  click(form().btnShowAuth);
  openForm(window().btnNew);
  EXPECT_EQ(content().newConnectionWindowController(), first);
  EXPECT_EQ(form().window.title(), "Tarn - New Connection");
  EXPECT_EQ(shown(), (Texts{"", "", "", "+", "", "utf8"}));
  EXPECT_FALSE(form().btnShowAuth.state());
  EXPECT_FALSE(first->form().serverId());
  EXPECT_TRUE(form().txtCnnName.isFirstResponder());
}

TEST_F(ConnectionFormTest, CancelEscapeAndTheCloseButtonKeepNothing) {
  openWindow();
  const std::function<void()> ways[] = {[this] { click(form().btnCancel); }, [] { press(Qt::Key_Escape); },
                                        [this] { form().window.widget()->close(); }};
  for (const auto& end : ways) {
    openForm(window().btnNew);
    fillIn({"name", "host", "1"});
    end();
    EXPECT_FALSE(content().newConnectionWindowController());
    settle();
  }
  EXPECT_TRUE(stored().empty());
  EXPECT_EQ(rows(), Texts{"My Favourite"});
}

TEST_F(ConnectionFormTest, AFavouriteRemovedBehindItsFormIsNotMadeAgain) {
  store("local", 1);
  openWindow();
  openEdit(1);
  selectRows({1});
  click(window().btnRem);
  click(form().btnSave);
  EXPECT_FALSE(isOpen());
  EXPECT_TRUE(stored().empty());
  EXPECT_EQ(rows(), Texts{"My Favourite"});
}

}  // namespace tarn::test
