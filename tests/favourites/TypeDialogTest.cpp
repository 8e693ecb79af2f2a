#include "tests/support/RedisServer.h"
#include "tests/support/program/ProgramTest.h"

namespace tarn::test {

namespace {

class TypeDialogTest : public ProgramTest {
protected:
  NewKeyValueTypeSelectWindowController* controller() { return content().newKeyValueTypeSelectWindowController(); }
};

}  // namespace

TEST_F(TypeDialogTest, AConfirmedTypeMakesAnEmptyFormInTheTabOnShow) {
  const RedisServer redis;
  redis.command({"set", "a", "text"});
  store("local", redis.port());
  store("other", redis.port());
  openWindow();
  connect();
  clickRow("db0(");
  waitForKeys(1);
  readKey("a", "Data Size: 4byte(s)");
  clickRow("other");

  // The dialog is opened over one tab and confirmed over another.
  openTypeDialog();
  clickRow("local");
  click(typeDialog().btnConfirm);
  EXPECT_EQ(tab().labType.stringValue(), "Type: String (New)");
  EXPECT_EQ(tab().txtTTL.stringValue(), "-1");
  EXPECT_EQ(tab().valueDataStringTxtView.string(), "");
  EXPECT_EQ(tab().tableKeys.selectedRow(), -1);
  EXPECT_EQ(tab(1).labType.stringValue().find("New"), std::string::npos);
}

TEST_F(TypeDialogTest, IsOneDialogThatStartsAnewEachTime) {
  openWindow();
  openTypeDialog();
  EXPECT_EQ(itemCount(typeDialog().popValueType), 5);
  const auto* const first = controller();
  choose(typeDialog().popValueType, "Hash");
  openTypeDialog();
  EXPECT_EQ(controller(), first);
  EXPECT_EQ(typeDialog().popValueType.titleOfSelectedItem(), "String");
  EXPECT_TRUE(typeDialog().popValueType.isFirstResponder());

  // Without a tab it only closes, here by Enter on the list.
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  EXPECT_FALSE(typeDialog().window.isVisible());
  EXPECT_EQ(controller(), first);
  EXPECT_TRUE(alerts.shown().empty());
}

TEST_F(TypeDialogTest, CancelEscapeAndTheCloseButtonEndIt) {
  store("local", 1);
  openWindow();
  clickRow("local");
  const std::string before = tab().labType.stringValue();
  const std::function<void()> ways[] = {[this] { click(typeDialog().btnCancel); }, [] { press(Qt::Key_Escape); },
                                        [this] { typeDialog().window.widget()->close(); }};
  for (const auto& end : ways) {
    openTypeDialog();
    end();
    EXPECT_FALSE(controller());
    settle();
    EXPECT_EQ(tab().labType.stringValue(), before);
  }
}

}  // namespace tarn::test
