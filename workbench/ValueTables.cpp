#include "workbench/ValueTables.h"

#include <utility>

#include "workbench/codec/EscapeForms.h"

namespace tarn {

ValueTables::ValueTables(OperationTabLayout& outlets, TabState& state, TabQueue& queue)
    : outlets_(outlets),
      state_(state),
      queue_(queue),
      places_{{{2, outlets.valueDataSetTable, 0, state.setValue, outlets.setValueTextView},
               {4, outlets.valueDataHashTable, 0, state.hashKey, outlets.hashKeyTextView},
               {5, outlets.valueDataHashTable, 1, state.hashVal, outlets.hashValueTextView},
               {6, outlets.valueDataSortedSetTable, 0, state.sortedSetValue, outlets.sortedSetValueTextView}}} {
  for (const Place& place : places_) {
    if (place.column > 0) continue;
    place.table.setTag(place.tag);
    place.table.setDataSource(this);
    place.table.setDelegate(this);
  }
}

void ValueTables::setRows(ValueColumn& column, std::vector<Bytes> rows) {
  queue_.dispose(column.assign(std::move(rows), outlets_.popValueDataCharset.titleOfSelectedItem()));
}

void ValueTables::setScores(std::vector<std::string> scores) {
  queue_.dispose(std::exchange(state_.sortedSetScore, std::move(scores)));
}

NSTableView* ValueTables::tableForType(std::string_view type) {
  if (type == "List" || type == "Set") return &outlets_.valueDataSetTable;
  if (type == "Hash") return &outlets_.valueDataHashTable;
  if (type == "SortedSet") return &outlets_.valueDataSortedSetTable;
  return nullptr;
}

void ValueTables::emptyTable(const NSTableView& table) {
  for (const Place& place : places_) {
    if (&place.table != &table) continue;
    setRows(place.rows, {});
    if (showsScore(table, 1)) setScores({});
    place.table.reloadData();
  }
  showInEditors(table, -1);
}

void ValueTables::emptyAllTables() {
  for (const Place& place : places_) {
    if (place.column == 0) emptyTable(place.table);
  }
}

void ValueTables::changeCharset(NSTableView& table) {
  for (const Place& place : places_) {
    if (&place.table == &table) place.rows.setTitle(outlets_.popValueDataCharset.titleOfSelectedItem());
  }
  table.reloadData();
}

void ValueTables::reloadAllTables() {
  for (const Place& place : places_) {
    if (place.column == 0) place.table.reloadData();
  }
}

int ValueTables::numberOfRowsInTableView(const NSTableView& table) {
  for (const Place& place : places_) {
    if (&place.table == &table) return static_cast<int>(place.rows.rowCount());
  }
  return 0;
}

void ValueTables::viewForTableColumn(NSTableView& table, int column, int row, NSTableCellView& cell) {
  if (row < 0 || row >= numberOfRowsInTableView(table)) return;
  const auto index = static_cast<std::size_t>(row);
  if (showsScore(table, column)) {
    cell.setStringValue(state_.sortedSetScore[index]);
    return;
  }
  for (const Place& place : places_) {
    if (&place.table != &table || place.column != column || index >= place.rows.rowCount()) continue;
    const std::string text = place.rows.row(index).text;
    cell.setStringValue(outlets_.chkTranslate.state() ? escapeControlsForCell(text) : text);
    cell.setToolTip(text);
  }
}

void ValueTables::tableViewSelectionIsChanging(NSTableView& table) {
  state_.currentDataRow = table.selectedRow();
}

void ValueTables::tableViewSelectionDidChange(NSTableView& table) {
  showInEditors(table, table.selectedRow());
}

bool ValueTables::showsScore(const NSTableView& table, int column) const {
  return &table == &outlets_.valueDataSortedSetTable && column == 1;
}

// Without a valid row the editors become empty.
void ValueTables::showInEditors(const NSTableView& table, int row) {
  const bool valid = row >= 0 && row < numberOfRowsInTableView(table);
  const auto index = static_cast<std::size_t>(row);
  for (const Place& place : places_) {
    if (&place.table == &table) place.editor.setString(valid ? place.rows.row(index).text : std::string());
  }
  if (showsScore(table, 1)) {
    outlets_.sortedSetScoreTextField.setStringValue(valid ? state_.sortedSetScore[index] : std::string());
  }
}

}  // namespace tarn
