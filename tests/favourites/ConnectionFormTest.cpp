#include "favourites/FavouritesStore.h"
#include "tests/support/program/ProgramTest.h"

namespace tarn::test {

namespace {

class ConnectionFormTest : public ProgramTest {
protected:
  void openEdit(int row) {
    selectRows({row});
    openForm(window().btnEdit);
  }
  // The form's fields, of the two passwords the one in sight behind "+", then the messages since the last call.
  std::string shown() {
    std::string all;
    if (content().newConnectionWindowController() && form().window.isVisible()) {
      all = form().window.title().substr(7) + ": ";
      const NSTextField* const fields[] = {&form().txtCnnName, &form().txtIp, &form().txtPort, &form().txtAuth,
                                           &form().txtAuthToShow};
      for (const NSTextField* field : fields)
        all += (field->isHidden() ? "" : "+") + field->stringValue() + "|";
      all += form().popDefaultCharset.titleOfSelectedItem();
    }
    for (const std::string& message : alerts.messages())
      all += " " + message;
    alerts.clear();
    return all;
  }
  // The rows of the tree, and what the next start would show.
  std::string stored() {
    std::string all = screen() + ":";
    for (const auto& favourite : FavouritesStore().loadFavourites()) {
      all += " " + favourite->connectionName() + "|" + favourite->serverIp() + "|" +
             std::to_string(favourite->serverPort()) + "|" + favourite->auth() + "|" + favourite->defaultCharset();
    }
    return all;
  }
};

}  // namespace

TEST_F(ConnectionFormTest, ANewConnectionIsTypedMendedAndSaved) {
  store("local", 1);
  openWindow();
  openForm(window().btnNew);
  // The port's formatter refuses what is no port.
  fillIn({"local", "host", "x", "päss\"w"});
  click(form().btnSave);
  click(form().btnTestConnection);
  EXPECT_EQ(shown(),
            "New Connection: +local|+host|+|+päss\"w||utf8 Enter the Server Port first. Enter the Server Port first.");
  retype(form().txtPort, "063799");
  click(form().btnSave);
  EXPECT_EQ(shown(),
            "New Connection: +local|+host|+0|+päss\"w||utf8 There is already a Favourite called 'local'，can not "
            "add the same name to favourite");
  EXPECT_EQ(stored(), "local: local|127.0.0.1|1||utf8");

  // Names differ by case, and a port of 0 and an empty host are taken.
  retype(form().txtCnnName, "Local 的");
  retype(form().txtIp, "");
  choose(form().popDefaultCharset, "GBK");
  press(Qt::Key_Return);
  EXPECT_EQ(shown(), "");
  EXPECT_EQ(stored(), "local Local 的: local|127.0.0.1|1||utf8 Local 的||0|päss\"w|GBK");
  EXPECT_EQ(server(1)->auth(), "päss\"w");
}

// The password of the field in sight counts.
TEST_F(ConnectionFormTest, AnEditReachesStoreListTreeAndTheOpenTab) {
  store("local", 1, "secret");
  store("other", 2);
  openWindow();
  clickRow("local");
  const NSUUID id = server()->serverId();
  openEdit(1);
  EXPECT_EQ(shown(), "Edit Connection: +local|+127.0.0.1|+1|+secret|secret|utf8");
  form().txtAuth.becomeFirstResponder();
  click(form().btnShowAuth);
  EXPECT_TRUE(form().txtAuthToShow.isFirstResponder());
  keys("End '1");
  EXPECT_EQ(shown(), "Edit Connection: +local|+127.0.0.1|+1|secret|+secret1|utf8");
  click(form().btnShowAuth);
  EXPECT_EQ(shown(), "Edit Connection: +local|+127.0.0.1|+1|+secret1|secret1|utf8");
  click(form().btnShowAuth);
  keys("End '2");
  form().txtCnnName.setStringValue("other");
  click(form().btnSave);
  EXPECT_TRUE(shown().ends_with("add the same name to favourite"));
  form().txtCnnName.setStringValue("renamed");
  form().txtIp.setStringValue("example.org");
  form().txtPort.setStringValue("7000");
  form().popDefaultCharset.selectItemWithTitle("big5");
  tab().txtSearchKey.setStringValue("left");
  click(form().btnSave);
  EXPECT_EQ(shown(), "");
  EXPECT_EQ(stored(),
            "*renamed other | [renamed] | NotConnected 0 db0 queue: renamed|example.org|7000|secret12|big5 "
            "other|127.0.0.1|2||utf8");
  EXPECT_EQ(server()->serverId(), id);
  EXPECT_EQ(window().mainTab.selectedTabViewItem()->toolTip(), "renamed");
  EXPECT_EQ(tab().labServerName.stringValue(), "Name:renamed server:example.org port:7000");
  EXPECT_EQ(tab().popKeyDataCharset.titleOfSelectedItem(), "big5");
  EXPECT_EQ(tab().txtSearchKey.stringValue(), "");
}

TEST_F(ConnectionFormTest, AnOpenFormIsTakenOverAndKeepsNothingWhenItIsLeft) {
  store("local", 1, "secret");
  store("other", 2);
  openWindow();
  openEdit(1);
  auto* const first = content().newConnectionWindowController();
  click(form().btnShowAuth);
  openEdit(2);
  EXPECT_EQ(shown(), "Edit Connection: +other|+127.0.0.1|+2|+||utf8");
  EXPECT_FALSE(form().btnShowAuth.state());
  // A new connection doesn't take the password of another one along.
  openEdit(1);
  click(form().btnShowAuth);
  openForm(window().btnNew);
  EXPECT_EQ(content().newConnectionWindowController(), first);
  EXPECT_EQ(shown(), "New Connection: +|+|+|+||utf8");
  EXPECT_TRUE(form().txtCnnName.isFirstResponder());

  const std::function<void()> ways[] = {[this] { click(form().btnCancel); }, [] { press(Qt::Key_Escape); },
                                        [this] { form().window.widget()->close(); }};
  for (const auto& end : ways) {
    openForm(window().btnNew);
    fillIn({"name", "host", "1"});
    end();
    EXPECT_FALSE(content().newConnectionWindowController());
    settle();
  }
  EXPECT_EQ(stored(), "*local other: local|127.0.0.1|1|secret|utf8 other|127.0.0.1|2||utf8");

  // A favourite removed behind its form isn't made again.
  openEdit(2);
  click(window().btnRem);
  click(form().btnSave);
  EXPECT_EQ(shown(), "");
  EXPECT_EQ(stored(), "local: local|127.0.0.1|1|secret|utf8");
}

}  // namespace tarn::test
