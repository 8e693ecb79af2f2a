#pragma once

#include "platform/appkit/table/TableViewWidget.h"
#include "tests/support/widgets/Hand.h"

#include <string_view>

namespace tarn::test {

// What a hand does in the cells of a table.

inline TableViewWidget& widgetOf(const NSTableView& table) {
  return dynamic_cast<TableViewWidget&>(*table.widget());
}

inline void clickCell(const NSTableView& table, int row, int column, Qt::MouseButton button = Qt::LeftButton) {
  click(*widgetOf(table).viewport(), widgetOf(table).cellRect(row, column).center(), button);
}

inline void openCell(const NSTableView& table, int row, int column) {
  doubleClick(*widgetOf(table).viewport(), widgetOf(table).cellRect(row, column).center());
}

// The text field of the open cell, or nothing.
inline TextFieldWidget* editorOf(const NSTableView& table) {
  auto* editor = widgetOf(table).viewport()->findChild<TextFieldWidget*>();
  return editor && editor->isVisible() ? editor : nullptr;
}

// In whatever has the keyboard.
inline void replaceText(std::string_view text) {
  press(Qt::Key_A, Qt::ControlModifier);
  press(Qt::Key_Delete);
  type(text);
}

}  // namespace tarn::test
