#include "workbench/ValueTables.h"

#include "codec/EscapeForms.h"
#include "formatters/RequiredCouldNegativeDoubleFormatter.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace tarn {

ValueTables::ValueTables(OperationTabLayout& outlets, TabState& state, TabQueue& queue)
    : outlets_(outlets),
      state_(state),
      queue_(queue),
      places_{{{2, outlets.valueDataSetTable, 0, state.setValue, outlets.setValueTextView},
               {4, outlets.valueDataHashTable, 0, state.hashKey, outlets.hashKeyTextView},
               {5, outlets.valueDataHashTable, 1, state.hashVal, outlets.hashValueTextView},
               {6, outlets.valueDataSortedSetTable, 0, state.sortedSetValue, outlets.sortedSetValueTextView}}} {
  for (const ValuePlace& place : places_) {
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

int ValueTables::cellTag(const NSTableView& table, int column) const {
  for (const ValuePlace& place : places_) {
    if (&place.table == &table && place.column == column) return place.tag;
  }
  return scoreCellTag;
}

bool ValueTables::hasRow(const NSTableView& table, int row) const {
  return row >= 0 && static_cast<std::size_t>(row) < firstPlace(table).rows.rowCount();
}

int ValueTables::revision(const NSTableView& table) const {
  int sum = 0;
  for (const ValuePlace& place : places_) {
    if (&place.table == &table) sum += place.rows.revision();
  }
  return sum;
}

void ValueTables::insertRow(NSTableView& table, std::size_t row) {
  for (const ValuePlace& place : places_) {
    if (&place.table == &table) place.rows.insertRow(row);
  }
  if (showsScore(table, 1)) {
    state_.sortedSetScore.insert(state_.sortedSetScore.begin() + static_cast<std::ptrdiff_t>(row), std::string());
  }
  table.reloadData();
}

void ValueTables::removeRows(NSTableView& table, const std::vector<std::size_t>& rows) {
  for (const ValuePlace& place : places_) {
    if (&place.table == &table) place.rows.removeRows(rows);
  }
  if (showsScore(table, 1)) eraseRows(state_.sortedSetScore, rows);
  table.reloadData();
}

NSTableView* ValueTables::tableForType(std::string_view type) {
  if (type == "List" || type == "Set") return &outlets_.valueDataSetTable;
  if (type == "Hash") return &outlets_.valueDataHashTable;
  if (type == "SortedSet") return &outlets_.valueDataSortedSetTable;
  return nullptr;
}

void ValueTables::emptyTable(NSTableView& table) {
  for (const ValuePlace& place : places_) {
    if (&place.table == &table) setRows(place.rows, {});
  }
  if (showsScore(table, 1)) setScores({});
  table.reloadData();
  showInEditors(table);
}

void ValueTables::emptyAllTables() {
  for (const ValuePlace& place : places_) {
    if (place.column == 0) emptyTable(place.table);
  }
}

void ValueTables::changeCharset(NSTableView& table) {
  for (const ValuePlace& place : places_) {
    if (&place.table == &table) place.rows.setTitle(outlets_.popValueDataCharset.titleOfSelectedItem());
  }
  table.reloadData();
}

void ValueTables::reloadAllTables() {
  for (const ValuePlace& place : places_) {
    if (place.column == 0) place.table.reloadData();
  }
}

std::string ValueTables::shownText(const std::string& text, bool translate) {
  return translate ? escapeControlsForCell(text) : text;
}

void ValueTables::showInCell(const ValuePlace& place, int row) {
  if (NSTableCellView* cell = place.table.viewAtColumn(place.column, row, false)) showRow(place, row, *cell);
}

void ValueTables::showSelectedRow(const ValuePlace& place) {
  const int row = place.table.selectedRow();
  if (hasRow(place.table, row)) place.editor.setString(place.rows.row(static_cast<std::size_t>(row)).text);
}

void ValueTables::showSelectedScore() {
  const int row = outlets_.valueDataSortedSetTable.selectedRow();
  if (!hasRow(outlets_.valueDataSortedSetTable, row)) return;
  outlets_.sortedSetScoreTextField.setStringValue(state_.sortedSetScore[static_cast<std::size_t>(row)]);
}

int ValueTables::numberOfRowsInTableView(const NSTableView& table) {
  return static_cast<int>(firstPlace(table).rows.rowCount());
}

void ValueTables::viewForTableColumn(NSTableView& table, int column, int row, NSTableCellView& cell) {
  if (!hasRow(table, row)) return;
  if (showsScore(table, column)) return showScore(row, cell);
  for (const ValuePlace& place : places_) {
    if (&place.table == &table && place.column == column) showRow(place, row, cell);
  }
}

void ValueTables::tableViewSelectionIsChanging(NSTableView& table) {
  state_.currentDataRow = table.selectedRow();
}

void ValueTables::tableViewSelectionDidChange(NSTableView& table) {
  showInEditors(table);
}

bool ValueTables::showsScore(const NSTableView& table, int column) const {
  return &table == &outlets_.valueDataSortedSetTable && column == 1;
}

const ValuePlace& ValueTables::firstPlace(const NSTableView& table) const {
  return *std::ranges::find(places_, &table, [](const ValuePlace& place) { return &place.table; });
}

void ValueTables::showRow(const ValuePlace& place, int row, NSTableCellView& cell) const {
  const std::string text = place.rows.row(static_cast<std::size_t>(row)).text;
  cell.setStringValue(shownText(text, outlets_.chkTranslate.state()));
  cell.setToolTip(text);
}

void ValueTables::showScore(int row, NSTableCellView& cell) const {
  cell.setStringValue(state_.sortedSetScore[static_cast<std::size_t>(row)]);
  cell.setFormatter(std::make_unique<RequiredCouldNegativeDoubleFormatter>());
  cell.setTag(scoreCellTag);
  cell.setDelegate(cellDelegate_);
  cell.setEditable(true);
}

// Without a valid row the editors become empty.
void ValueTables::showInEditors(const NSTableView& table) {
  for (const ValuePlace& place : places_) {
    if (&place.table != &table) continue;
    place.editor.setString("");
    showSelectedRow(place);
  }
  if (!showsScore(table, 1)) return;
  outlets_.sortedSetScoreTextField.setStringValue("");
  showSelectedScore();
}

}  // namespace tarn
