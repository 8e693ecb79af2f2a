#include "favourites/FavouritesStore.h"
#include "tests/support/program/Program.h"

namespace tarn::test {

class ConnectionFormTest : public ProgramTest {
protected:
  void openEdit(int row) {
    selectRows({row});
    openForm(window().btnEdit);
  }
  // The form's fields, of the two passwords the one in sight behind "+", then the messages since the last call.
  std::string shown() {
    std::string all;
    if (content().newConnectionWindowController() && form().window.widget()->isVisible()) {
      all = form().window.widget()->windowTitle().mid(7).toStdString() + ": ";
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
    for (const auto& each : FavouritesStore().loadFavourites())
      all += " " + each->connectionName() + "|" + each->serverIp() + "|" + std::to_string(each->serverPort()) + "|" +
             each->auth() + "|" + each->defaultCharset();
    return all;
  }
};

using TypeDialogTest = ProgramTest;

TEST_F(ConnectionFormTest, ANewConnectionIsTypedMendedAndSaved) {
  open({{"local", 1}});
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
  open({{"local", 1, "secret"}, {"other", 2}});
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
  EXPECT_EQ(tab().popKeyDataCharset.titleOfSelectedItem() + tab().txtSearchKey.stringValue(), "big5");
}

TEST_F(ConnectionFormTest, AnOpenFormIsTakenOverAndKeepsNothingWhenItIsLeft) {
  open({{"local", 1, "secret"}, {"other", 2}});
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

  const std::function<void()> ways[] = {[&] { click(form().btnCancel); }, [] { press(Qt::Key_Escape); },
                                        [&] { form().window.widget()->close(); }};
  for (const auto& end : ways) {
    openForm(window().btnNew);
    fillIn({"name", "host", "1"});
    end();
    EXPECT_FALSE(content().newConnectionWindowController());
    settle();
  }
  // Its own name is no other's.
  openEdit(1);
  click(form().btnSave);
  EXPECT_EQ(shown(), "");
  EXPECT_EQ(stored(), "*local other: local|127.0.0.1|1|secret|utf8 other|127.0.0.1|2||utf8");

  // A favourite removed behind its form isn't made again.
  openEdit(2);
  click(window().btnRem);
  click(form().btnSave);
  EXPECT_EQ(shown(), "");
  EXPECT_EQ(stored(), "local: local|127.0.0.1|1|secret|utf8");
}

TEST_F(TypeDialogTest, IsOneDialogThatStartsAnewEachTimeAndEndsInEveryWay) {
  open({{"local"}, {"other"}});
  clickRow("other");
  clickRow("local");
  const std::string before = tab().labType.stringValue();
  const std::function<void()> ways[] = {[&] { click(typeDialog().btnCancel); }, [] { press(Qt::Key_Escape); },
                                        [&] { typeDialog().window.widget()->close(); }};
  for (const auto& end : ways) {
    click(tab().btnNew);
    end();
    EXPECT_FALSE(content().newKeyValueTypeSelectWindowController());
    settle();
  }
  click(tab().btnNew);
  const auto* const first = content().newKeyValueTypeSelectWindowController();
  EXPECT_EQ(itemCount(typeDialog().popValueType), 5);
  choose(typeDialog().popValueType, "Hash");
  click(tab().btnNew);
  EXPECT_EQ(content().newKeyValueTypeSelectWindowController(), first);
  EXPECT_EQ(typeDialog().popValueType.titleOfSelectedItem(), "String");
  EXPECT_TRUE(typeDialog().popValueType.isFirstResponder());

  // It acts on the tab on show, not on that where it was opened, and without a tab it only closes; here by Enter.
  clickRow("other");
  click(typeDialog().btnConfirm);
  EXPECT_EQ(tab(1).labType.stringValue(), "Type: String (New)");
  EXPECT_EQ(tab().labType.stringValue(), before);
  click(tab().btnNew);
  content().closeSelectedTab();
  content().closeSelectedTab();
  keys("Down Return");
  EXPECT_FALSE(typeDialog().window.widget()->isVisible());
  EXPECT_EQ(content().newKeyValueTypeSelectWindowController(), first);
}

}  // namespace tarn::test
