#pragma once

#include "workbench/RowEditing.h"
#include "workbench/TabQueue.h"
#include "workbench/TabState.h"
#include "workbench/ValueTables.h"

#include <functional>

namespace tarn {

// Rows that are added and deleted, from the buttons and from the tables' menus. Main queue only.
class RowActions final {
public:
  RowActions(OperationTabLayout& outlets, TabState& state, TabQueue& queue, ValueTables& tables, RowEditing& editing);

  // For each pane on show.
  void deleteSelectedRows();
  void addRow();

  void deleteRows(NSTableView& table);
  // Behind the selected row of a list or set, else at the end. The new row is selected, and open.
  void addRow(NSTableView& table);

private:
  void setMenu(NSTableView& table, std::string title);
  void forEachShownTable(const std::function<void(NSTableView& table)>& act);

  OperationTabLayout& outlets_;
  TabState& state_;
  TabQueue& queue_;
  ValueTables& tables_;
  RowEditing& editing_;
};

}  // namespace tarn
