#include "tests/workbench/RowsFixture.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>

namespace tarn::test {
namespace {

class RowActionsTest : public RowsFixture {
protected:
  void add() { click(*outlets.btnAddRow.widget()); }
  void removeSelected() { click(*outlets.btnDeleteSelectedRows.widget()); }
};

TEST_F(RowActionsTest, AddsARowToAListBehindTheSelectedOneElseAtTheEnd) {
  showList({"a"_bytes, "b"_bytes});
  add();
  EXPECT_EQ(texts(state.setValue), (Texts{"a", "b", ""}));
  EXPECT_EQ(setTable.selectedRow(), 2);
  EXPECT_EQ(state.currentDataRow, 2);
  ASSERT_TRUE(editorOf(setTable));
  type("c");
  clickCell(setTable, 0, 0);
  add();
  type("after a");
  press(Qt::Key_Return);
  EXPECT_EQ(state.setValue.data(), (Rows{"a"_bytes, "after a"_bytes, "b"_bytes, "c"_bytes}));
  EXPECT_EQ(cell(setTable, 3, 0).stringValue(), "c");
}

TEST_F(RowActionsTest, AddsFieldsAndMembersAtTheEnd) {
  showHash({"f"_bytes, "g"_bytes}, {"v"_bytes, "w"_bytes});
  clickCell(hashTable, 0, 0);
  add();
  EXPECT_EQ(hashTable.selectedRow(), 2);
  EXPECT_EQ(cell(hashTable, 2, 0).tag(), 4);
  EXPECT_TRUE(cell(hashTable, 2, 0).isEditable());
  EXPECT_EQ(cell(hashTable, 2, 1).tag(), 5);
  EXPECT_FALSE(cell(hashTable, 2, 1).isEditable());
  EXPECT_EQ(cell(hashTable, 2, 1).toolTip(), "Press Enter to confirm");
  type("h");
  press(Qt::Key_Tab);
  type("x");
  press(Qt::Key_Return);
  EXPECT_EQ(texts(state.hashKey), (Texts{"f", "g", "h"}));
  EXPECT_EQ(texts(state.hashVal), (Texts{"v", "w", "x"}));

  showSortedSet({"a"_bytes}, {"1"});
  add();
  type("b");
  press(Qt::Key_Tab);
  type("2");
  press(Qt::Key_Return);
  EXPECT_EQ(texts(state.sortedSetValue), (Texts{"a", "b"}));
  EXPECT_EQ(state.sortedSetScore, (Texts{"1", "2"}));
}

TEST_F(RowActionsTest, CommitsWhatIsTypedBeforeItAdds) {
  showList({"a"_bytes, "b"_bytes});
  openCell(setTable, 0, 0);
  replaceText("A");
  add();
  EXPECT_EQ(texts(state.setValue), (Texts{"A", "", "b"}));

  clickCell(setTable, 2, 0);
  outlets.setValueTextView.becomeFirstResponder();
  replaceText("B");
  add();
  EXPECT_EQ(texts(state.setValue), (Texts{"A", "", "B", ""}));

  openCell(setTable, 0, 0);
  replaceText("\\B!");
  add();
  EXPECT_EQ(alerts.messages(), (Texts{"Can not decode Base64 Value '\\B!'"}));
  EXPECT_EQ(texts(state.setValue), (Texts{"A", "", "", "B", ""}));

  openCell(setTable, 0, 0);
  replaceText("\\B!");
  alerts.whileNextIsUp([this] { showList({"another"_bytes}); });
  add();
  EXPECT_EQ(texts(state.setValue), Texts{"another"});
}

TEST_F(RowActionsTest, DeletesTheSelectedRowInAllColumns) {
  showSortedSet({"a"_bytes, "b"_bytes, "c"_bytes}, {"1", "2", "3"});
  removeSelected();
  EXPECT_EQ(state.sortedSetScore.size(), 3U);
  clickCell(sortedSetTable, 1, 0);
  removeSelected();
  EXPECT_EQ(texts(state.sortedSetValue), (Texts{"a", "c"}));
  EXPECT_EQ(state.sortedSetScore, (Texts{"1", "3"}));
  EXPECT_EQ(sortedSetTable.selectedRow(), 1);
  EXPECT_EQ(outlets.sortedSetValueTextView.string(), "b");
  EXPECT_EQ(state.currentDataRow, 1);
  removeSelected();
  EXPECT_EQ(sortedSetTable.selectedRow(), -1);

  showHash({"f"_bytes, "g"_bytes}, {"v"_bytes, "w"_bytes});
  clickCell(hashTable, 0, 1);
  removeSelected();
  EXPECT_EQ(texts(state.hashKey), (Texts{"g"}));
  EXPECT_EQ(texts(state.hashVal), (Texts{"w"}));
  removeSelected();
  EXPECT_EQ(state.hashVal.rowCount(), 0U);
  EXPECT_EQ(hashTable.numberOfRows(), 0);
}

TEST_F(RowActionsTest, TextBeingTypedGoesWithItsRow) {
  showSortedSet({"a"_bytes, "b"_bytes, "c"_bytes}, {"1", "2", "3"});
  clickCell(sortedSetTable, 0, 0);
  outlets.sortedSetValueTextView.becomeFirstResponder();
  replaceText("typed over a");
  removeSelected();
  clickCell(sortedSetTable, 0, 0);
  outlets.sortedSetScoreTextField.becomeFirstResponder();
  replaceText("99");
  removeSelected();
  leave();
  EXPECT_EQ(texts(state.sortedSetValue), (Texts{"c"}));
  EXPECT_EQ(state.sortedSetScore, (Texts{"3"}));

  showList({"a"_bytes, "b"_bytes});
  openCell(setTable, 0, 0);
  replaceText("typed over a");
  removeSelected();
  EXPECT_EQ(texts(state.setValue), (Texts{"b"}));
  EXPECT_EQ(cell(setTable, 0, 0).stringValue(), "b");
}

TEST_F(RowActionsTest, TheMenuOfATableAddsAndDeletes) {
  struct Case {
    const char* type;
    NSTableView& table;
    const char* title;
  };
  showList({"a"_bytes, "b"_bytes});
  showHash({"a"_bytes, "b"_bytes}, {"a"_bytes, "b"_bytes});
  showSortedSet({"a"_bytes, "b"_bytes}, {"1", "2"});
  for (const auto& [type, table, title] :
       {Case{"Set", setTable, "SetTable快捷菜单"}, Case{"Hash", hashTable, "HashTable快捷菜单"},
        Case{"SortedSet", sortedSetTable, "SortedSet快捷菜单"}}) {
    showPane(type);
    const auto choose = [&](const char* item) {
      clickCell(table, 1, 0, Qt::RightButton);
      QWidget* cells = widgetOf(table).viewport();
      const QPoint place = widgetOf(table).cellRect(1, 0).center();
      QContextMenuEvent event(QContextMenuEvent::Mouse, place, cells->mapToGlobal(place));
      QApplication::sendEvent(cells, &event);
      settle();
      auto& menu = dynamic_cast<QMenu&>(*openPopUp());
      EXPECT_EQ(menu.title().toStdString(), title);
      QPoint line;
      for (QAction* action : menu.actions()) {
        EXPECT_TRUE(action->isEnabled());
        if (action->text() == item) line = menu.actionGeometry(action).center();
      }
      click(menu, line);
    };
    choose("Add Row");
    EXPECT_EQ(table.numberOfRows(), 3);
    EXPECT_EQ(table.selectedRow(), 2);
    choose("Delete Selected Row(s)");
    EXPECT_EQ(table.numberOfRows(), 2);
    EXPECT_EQ(cell(table, 0, 0).stringValue(), "a");
    EXPECT_EQ(cell(table, 1, 0).stringValue(), "");
  }
}

}  // namespace
}  // namespace tarn::test
