#include "tests/favourites/FavouritesFixture.h"
#include "tests/support/RedisServer.h"
#include "tests/support/widgets/Hand.h"

#include <QComboBox>

namespace tarn::test {

class TypeDialogTest : public FavouritesTest {
protected:
  NewKeyValueTypeSelectWindowController* controller() { return window().newKeyValueTypeSelectWindowController(); }
  NewKeyValueTypeSelectLayout& dialog() { return controller()->dialog().outlets(); }
  bool isOpen() { return controller() && dialog().window.isVisible(); }

  void openDialog() {
    window().openTypeDialog();
    ASSERT_TRUE(isOpen());
    ASSERT_TRUE(waitUntil([this] { return dialog().window.widget()->isActiveWindow(); }));
  }
  void choose(int index) { test::choose(*dialog().popValueType.widget(), index); }
};

TEST_F(TypeDialogTest, AConfirmedTypeMakesAnEmptyFormInTheTabOnShow) {
  const RedisServer redis;
  redis.command({"set", "a", "text"});
  store("local", redis.port());
  store("other", redis.port());
  openWindow();
  connect();
  clickRow(2);
  ASSERT_TRUE(waitForKeys(1));
  clickRow(static_cast<int>(rows().size()) - 1);
  EXPECT_EQ(selectedTabLabel(), "other");

  // The dialog is opened over one tab and confirmed over another.
  openDialog();
  clickRow(1);
  OperationTabLayout& tab = tabOf()->outlets();
  tab.tableKeys.selectRow(0);
  ASSERT_TRUE(waitForIdle());
  ASSERT_EQ(tab.valueDataStringTxtView.string(), "text");

  const char* const shown[] = {"String", "List", "Set", "Hash", "SortedSet"};
  for (int index = 0; index < 5; ++index) {
    openDialog();
    EXPECT_EQ(dialog().popValueType.titleOfSelectedItem(), "String");
    choose(index);
    click(*dialog().btnConfirm.widget());
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(controller());
    EXPECT_EQ(tab.labType.stringValue(), std::string("Type: ") + shown[index] + " (New)");
    EXPECT_EQ(tab.txtTTL.stringValue(), "-1");
    EXPECT_EQ(tab.valueDataStringTxtView.string(), "");
    EXPECT_TRUE(tab.tableKeys.selectedRow() < 0);
    EXPECT_EQ(tab.valueDataStringScrollView.isHidden(), index != 0);
    EXPECT_EQ(tab.valueDataSetScrollView.isHidden(), index != 1 && index != 2);
    EXPECT_EQ(tab.valueDataHashScrollView.isHidden(), index != 3);
    EXPECT_EQ(tab.valueDataSortedSetScrollView.isHidden(), index != 4);
  }
  EXPECT_EQ(tabOf(1)->outlets().labType.stringValue().find("New"), std::string::npos);
}

TEST_F(TypeDialogTest, IsOneDialogThatStartsAnewEachTime) {
  openWindow();
  openDialog();
  EXPECT_EQ(itemCount(dialog().popValueType), 5);
  const auto* const first = controller();
  choose(3);
  window().openTypeDialog();
  settle();
  EXPECT_EQ(controller(), first);
  EXPECT_EQ(dialog().popValueType.titleOfSelectedItem(), "String");
  EXPECT_TRUE(dialog().popValueType.isFirstResponder());

  // Without a tab it only closes, here by Enter on the list.
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(controller(), first);
  EXPECT_TRUE(alerts.shown().empty());
}

TEST_F(TypeDialogTest, CancelEscapeAndTheCloseButtonEndIt) {
  store("local", 1);
  openWindow();
  clickRow(1);
  const std::string before = tabOf()->outlets().labType.stringValue();
  const std::function<void()> ways[] = {[this] { click(*dialog().btnCancel.widget()); }, [] { press(Qt::Key_Escape); },
                                        [this] { dialog().window.widget()->close(); }};
  for (const auto& end : ways) {
    openDialog();
    end();
    EXPECT_FALSE(controller());
    settle();
    EXPECT_EQ(tabOf()->outlets().labType.stringValue(), before);
  }
}

}  // namespace tarn::test
