#include "tests/support/program/ProgramTest.h"

namespace tarn::test {

using TypeDialogTest = ProgramTest;

TEST_F(TypeDialogTest, IsOneDialogThatStartsAnewEachTimeAndEndsInEveryWay) {
  for (const char* name : {"local", "other"})
    store(name, 1);
  openWindow();
  clickRow("other");
  clickRow("local");
  const std::string before = tab().labType.stringValue();
  const std::function<void()> ways[] = {[this] { click(typeDialog().btnCancel); }, [] { press(Qt::Key_Escape); },
                                        [this] { typeDialog().window.widget()->close(); }};
  for (const auto& end : ways) {
    click(tab().btnNew);
    end();
    EXPECT_FALSE(content().newKeyValueTypeSelectWindowController());
    settle();
    EXPECT_EQ(tab().labType.stringValue(), before);
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
  EXPECT_FALSE(typeDialog().window.isVisible());
  EXPECT_EQ(content().newKeyValueTypeSelectWindowController(), first);
}

}  // namespace tarn::test
