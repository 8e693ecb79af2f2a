#pragma once

#include "workbench/value/RowsPane.h"
#include "workbench/value/StringPane.h"

#include <array>
#include <optional>

namespace tarn {

// The four panes of a value, and which of them is on show. Main queue only.
class ValuePanes final {
public:
  explicit ValuePanes(WorkbenchTab& tab);

  // The pane of the type; that of a String where there is none.
  void show(std::optional<ValueType> type);
  // The pane of a String, with the row buttons as they are.
  void showString();

  StringPane& string() { return string_; }
  // Null for a String, and where there is no type.
  RowsPane* rowsOf(std::optional<ValueType> type);

  // Shows the value in the form that was chosen now. True where it is one of rows.
  bool changeCharset();
  // For the panes of rows, also those that are hidden.
  void emptyRows();
  void reloadRows();
  void commitCells();
  void endCellEdits(bool translates);
  // Fits the columns of the tables to their panes.
  void doResize();

private:
  void showPane(RowsPane* rows);

  WorkbenchTab& tab_;
  StringPane string_;
  // Of lists and sets, hashes, sorted sets.
  std::array<RowsPane, 3> rows_;
  // Null while the pane of a String is.
  RowsPane* shown_ = nullptr;
};

}  // namespace tarn
