#include "workbench/RowActions.h"

#include "platform/appkit/NSMenu.h"
#include "platform/foundation/NSLocalizedString.h"

#include <array>
#include <memory>
#include <utility>
#include <vector>

namespace tarn {

RowActions::RowActions(OperationTabLayout& outlets, TabState& state, TabQueue& queue, ValueTables& tables,
                       RowEditing& editing)
    : outlets_(outlets), state_(state), queue_(queue), tables_(tables), editing_(editing) {
  outlets_.btnDeleteSelectedRows.setAction([this] { deleteSelectedRows(); });
  outlets_.btnAddRow.setAction([this] { addRow(); });
  setMenu(outlets_.valueDataSetTable, localizedString("SetTable快捷菜单"));
  setMenu(outlets_.valueDataHashTable, localizedString("HashTable快捷菜单"));
  setMenu(outlets_.valueDataSortedSetTable, localizedString("SortedSet快捷菜单"));
}

void RowActions::setMenu(NSTableView& table, std::string title) {
  const auto menu = std::make_shared<NSMenu>(std::move(title));
  menu->addItem(localizedString("Delete Selected Row(s)"), [this, &table] { deleteRows(table); });
  menu->addItem(localizedString("Add Row"), [this, &table] { addRow(table); });
  table.setMenu(menu);
}

void RowActions::forEachShownTable(const std::function<void(NSTableView& table)>& act) {
  // Behind an alert of one another pane may come on show, and the tab may go.
  const std::shared_ptr<void> tab = queue_.tab();
  std::vector<NSTableView*> shown;
  if (!outlets_.valueDataSetScrollView.isHidden()) shown.push_back(&outlets_.valueDataSetTable);
  if (!outlets_.valueDataHashScrollView.isHidden()) shown.push_back(&outlets_.valueDataHashTable);
  if (!outlets_.valueDataSortedSetScrollView.isHidden()) shown.push_back(&outlets_.valueDataSortedSetTable);
  for (NSTableView* const table : shown)
    act(*table);
}

void RowActions::deleteSelectedRows() {
  forEachShownTable([this](NSTableView& table) { deleteRows(table); });
}

void RowActions::addRow() {
  forEachShownTable([this](NSTableView& table) { addRow(table); });
}

void RowActions::deleteRows(NSTableView& table) {
  std::vector<std::size_t> rows;
  for (const int row : table.selectedRowIndexes()) {
    if (tables_.hasRow(table, row)) rows.push_back(static_cast<std::size_t>(row));
  }
  if (rows.empty()) return;
  // Text being typed belongs to a row that goes, not to the one that takes its number.
  editing_.endEditorEdits(table);
  tables_.removeRows(table, rows);
}

void RowActions::addRow(NSTableView& table) {
  const std::shared_ptr<void> tab = queue_.tab();
  const int revision = tables_.revision(table);
  editing_.commitEditableCells(table);
  editing_.endEditorEdits(table);
  // Behind an alert another value may have come.
  if (tables_.revision(table) != revision) return;

  const int selected = &table == &outlets_.valueDataSetTable ? table.selectedRow() : -1;
  const int row = tables_.hasRow(table, selected) ? selected + 1 : tables_.numberOfRowsInTableView(table);
  tables_.insertRow(table, static_cast<std::size_t>(row));
  table.scrollRowToVisible(row);
  table.viewAtColumn(0, row, true);
  table.selectRow(row);
  editing_.openNewRow(table, row);
  state_.currentDataRow = row;
}

}  // namespace tarn
