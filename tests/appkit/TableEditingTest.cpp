#include "platform/foundation/NSFormatter.h"
#include "tests/appkit/TableFixture.h"

#include <QComboBox>
#include <QMenu>
#include <QTest>

#include <functional>
#include <memory>
#include <string_view>

namespace tarn::test {
namespace {

class DigitsOnly final : public NSFormatter {
public:
  bool isPartialStringValid(std::string_view partial) const override {
    return partial.find_first_not_of("0123456789") == std::string_view::npos;
  }
};

class TableEditing : public TableFixture {
protected:
  TableEditing() { fill(100); }

  // Opens the cell, types into it, and forgets what that told.
  void edit(int row, int column, std::string_view typed = "x") {
    open(row, column);
    type(typed);
    take();
  }

  void activate() {
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    settle();
  }
};

TEST_F(TableEditing, OpensAnEditableCellWithAllItsTextSelected) {
  cell(1, 0).becomeFirstResponder();
  EXPECT_FALSE(isOpen());
  open(1, 0);
  ASSERT_TRUE(isOpen());
  EXPECT_TRUE(editor().hasFocus());
  EXPECT_TRUE(widget->cellRect(1, 0).contains(editor().geometry()));
  type("ab");
  EXPECT_TRUE(cell(1, 0).isEdited());
  cell(1, 0).becomeFirstResponder();
  type("c");
  EXPECT_EQ(cell(1, 0).stringValue(), "abc");
  EXPECT_EQ(take(), Log{"begin 6"});
}

TEST_F(TableEditing, EndsOnEnterAndGivesTheTableTheKeyboard) {
  edit(1, 0);
  press(Qt::Key_Return);
  EXPECT_EQ(take(), (Log{"end 6 1,0 x"}));
  EXPECT_FALSE(isOpen());
  EXPECT_TRUE(widget->hasFocus());
  EXPECT_EQ(cell(1, 0).stringValue(), "x");
  EXPECT_FALSE(cell(1, 0).isEdited());

  // Unchanged, or made so by code, it ends untold.
  open(1, 0);
  press(Qt::Key_Return);
  EXPECT_EQ(take(), Log{});
  edit(1, 0, "y");
  cell(1, 0).setStringValue("set");
  EXPECT_FALSE(cell(1, 0).isEdited());
  press(Qt::Key_Return);
  EXPECT_EQ(take(), Log{});
  EXPECT_EQ(cell(1, 0).stringValue(), "set");
}

TEST_F(TableEditing, TellsTheResponderBeforeTheFocusLeaves) {
  edit(1, 0);
  click(*other);
  EXPECT_EQ(take(), (Log{"resign x", "end 6 1,0 x"}));
  EXPECT_FALSE(isOpen());
  EXPECT_TRUE(other->hasFocus());

  widget->setFocus();
  press(Qt::Key_Tab);
  EXPECT_TRUE(other->hasFocus());
  EXPECT_EQ(take(), Log{"resign"});
}

TEST_F(TableEditing, StaysOpenUnderAnInactiveWindowAMenuAPopUpOrAButton) {
  auto* box = new QComboBox;
  box->setFocusPolicy(Qt::NoFocus);
  box->addItems({"a", "b"});
  window.layout()->addWidget(box);
  settle();
  edit(1, 0);
  QWidget second;
  show(second, {80, 60});
  EXPECT_TRUE(isOpen());
  second.close();
  activate();
  QMenu menu;
  menu.addAction("Item");
  menu.popup(window.pos());
  settle();
  menu.close();
  choose(*box, 1);
  click(*button);
  EXPECT_TRUE(isOpen());
  EXPECT_TRUE(waitUntil([&] { return editor().hasFocus(); }));
  EXPECT_EQ(take(), Log{});
  EXPECT_EQ(cell(1, 0).stringValue(), "x");

  // But the focus may move behind an inactive window.
  show(second, {80, 60});
  other->setFocus();
  second.close();
  activate();
  EXPECT_TRUE(other->hasFocus());
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(take(), Log{"end 6 1,0 x"});
}

TEST_F(TableEditing, EscapePutsTheModelsTextBackUntold) {
  edit(1, 0);
  press(Qt::Key_Return);
  edit(1, 0, "y");
  press(Qt::Key_Escape);
  EXPECT_EQ(take(), Log{});
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(cell(1, 0).stringValue(), "name1");
  EXPECT_TRUE(cell(1, 0).isEditable());
  EXPECT_TRUE(widget->hasFocus());
}

TEST_F(TableEditing, TabGoesThroughColumnsAndRows) {
  table.selectRow(1);
  edit(1, 0);
  press(Qt::Key_Tab);
  EXPECT_EQ(take(), (Log{"end 6 1,0 x", "open 1,1"}));
  press(Qt::Key_Tab);
  EXPECT_EQ(take(), (Log{"changing 2", "changed 2", "open 2,0"}));
  press(Qt::Key_Backtab);
  EXPECT_EQ(take(), (Log{"changing 1", "changed 1", "open 1,1"}));
  EXPECT_TRUE(editor().hasFocus());

  table.scrollRowToVisible(99);
  open(99, 1);
  press(Qt::Key_Tab);
  EXPECT_FALSE(isOpen());
  EXPECT_TRUE(widget->hasFocus());
}

TEST_F(TableEditing, EnterAndF2OpenTheFirstCellOfTheSelectedRow) {
  widget->setFocus();
  press(Qt::Key_F2);
  EXPECT_EQ(take(), Log{});
  table.selectRow(50);
  take();
  press(Qt::Key_F2);
  EXPECT_EQ(take(), Log{"open 50,0"});
  EXPECT_TRUE(cells().rect().contains(editor().geometry()));
  press(Qt::Key_Return);
  EXPECT_FALSE(isOpen());
  press(Qt::Key_Return);
  EXPECT_TRUE(isOpen());
  EXPECT_EQ(take(), Log{"open 50,0"});
}

TEST_F(TableEditing, ClickEndsTheEditBeforeItChangesTheSelection) {
  edit(1, 0);
  click(cells(), at(3, 0));
  EXPECT_EQ(take(), (Log{"end 6 1,0 x", "changing 3", "changed 3", "mouse 3,0"}));
  EXPECT_FALSE(isOpen());

  // One on an editable cell opens it too.
  click(cells(), at(2, 1));
  EXPECT_EQ(take(), (Log{"changing 2", "changed 2", "mouse 2,1"}));
  ASSERT_TRUE(isOpen());
  type("5");
  click(editor());
  EXPECT_EQ(take(), Log{"begin 7"});
  EXPECT_TRUE(isOpen());
  click(cells(), at(4, 1));
  EXPECT_EQ(take(), (Log{"end 7 2,1 5", "changing 4", "changed 4", "mouse 4,1"}));
  EXPECT_TRUE(widget->cellRect(4, 1).contains(editor().geometry()));

  // So does code.
  type("6");
  take();
  open(2, 1);
  EXPECT_EQ(take(), Log{"end 7 4,1 6"});
  EXPECT_EQ(cell(2, 1).stringValue(), "5");
  EXPECT_TRUE(editor().hasFocus());
}

TEST_F(TableEditing, FormatterRefusesKeystrokes) {
  open(1, 0);
  press(Qt::Key_Return);
  cell(1, 0).setFormatter(std::make_unique<DigitsOnly>());
  cell(1, 0).setStringValue("no digits");
  open(1, 0);
  EXPECT_EQ(cell(1, 0).stringValue(), "no digits");
  type("1a2");
  EXPECT_EQ(cell(1, 0).stringValue(), "12");
  edit(2, 0, "free");
  EXPECT_EQ(cell(2, 0).stringValue(), "free");
}

TEST_F(TableEditing, ReloadDropsAnOpenEditUntold) {
  edit(1, 0);
  table.reloadDataForRowIndexes({1}, {1});
  EXPECT_TRUE(isOpen());
  for (const auto& reload : std::initializer_list<std::function<void()>>{
           [&] { table.reloadDataForRowIndexes({1}, {0}); }, [&] { table.reloadData(); }}) {
    edit(1, 0);
    reload();
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(cell(1, 0).stringValue(), "name1");
    EXPECT_FALSE(cell(1, 0).isEditable());
    EXPECT_TRUE(widget->hasFocus());
    EXPECT_EQ(take(), Log{});
  }
}

TEST_F(TableEditing, TheOpenCellKeepsItsViewOutOfSight) {
  edit(1, 0);
  widget->verticalScrollBar()->setValue(widget->verticalScrollBar()->maximum());
  settle();
  EXPECT_EQ(table.rowsWithViews().front(), 1);
  EXPECT_FALSE(cells().rect().intersects(editor().geometry()));
  type("y");
  EXPECT_EQ(cell(1, 0).stringValue(), "xy");
  press(Qt::Key_Return);
  EXPECT_EQ(take(), Log{"end 6 1,0 xy"});
}

TEST_F(TableEditing, SurvivesATableThatGoesInItsOwnMessage) {
  struct Closer final : NSTextFieldDelegate {
    void controlTextDidBeginEditing(int) override {}
    void controlTextDidEndEditing(const TextEdit&) override { table->deleteLater(); }
    TableViewWidget* table = nullptr;
  } closer;
  closer.table = widget;
  open(1, 0);
  cell(1, 0).setDelegate(&closer);
  type("x");
  press(Qt::Key_Return);
  settle();
}

}  // namespace
}  // namespace tarn::test
