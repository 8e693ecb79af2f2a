#include "workbench/RowEditing.h"

#include "formatters/RequiredCouldNegativeDoubleFormatter.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSTimer.h"

#include <memory>
#include <utility>

namespace tarn {

namespace {

constexpr int scoreEditorTag = 100001;
constexpr double openAgainDelay = 0.1;

}  // namespace

RowEditing::RowEditing(OperationTabLayout& outlets, TabState& state, TabQueue& queue, ValueTables& tables)
    : outlets_(outlets),
      state_(state),
      queue_(queue),
      tables_(tables),
      setTable_(outlets.valueDataSetTable, *this),
      hashTable_(outlets.valueDataHashTable, *this),
      sortedSetTable_(outlets.valueDataSortedSetTable, *this) {
  tables_.setCellDelegate(this);
  for (const ValuePlace& place : tables_.places()) {
    place.editor.setDelegate(this);
    if (place.column > 0) continue;
    place.table.setOpensCell([this, table = &place.table](int row, int column) { openRow(*table, row, column); });
  }
  outlets_.sortedSetScoreTextField.setFormatter(std::make_unique<RequiredCouldNegativeDoubleFormatter>());
  outlets_.sortedSetScoreTextField.setTag(scoreEditorTag);
  outlets_.sortedSetScoreTextField.setDelegate(this);
}

// --- Opening cells -------------------------------------------------------------------------------------------------

void RowEditing::didDoubleClick(NSTableView& table, int row, int column) {
  openRow(table, row, column);
  openAgainLater(table, row, column);
}

void RowEditing::openRow(NSTableView& table, int row, int column) {
  if (&table == &outlets_.valueDataSetTable) {
    for (const int each : table.rowsWithViews())
      table.viewAtColumn(0, each, false)->setEditable(false);
  }
  for (int each = 0; each < table.numberOfColumns(); ++each)
    prepareCell(table, row, each, true);
  if (NSTableCellView* cell = table.viewAtColumn(column, row, false)) cell->becomeFirstResponder();
}

void RowEditing::openNewRow(NSTableView& table, int row) {
  for (int column = 1; column < table.numberOfColumns(); ++column)
    prepareCell(table, row, column, false);
  prepareCell(table, row, 0, true);
  if (NSTableCellView* cell = table.viewAtColumn(0, row, false)) cell->becomeFirstResponder();
  openAgainLater(table, row, 0);
}

void RowEditing::openAgainLater(NSTableView& table, int row, int column) {
  const auto open = [this, &table, row, column, revision = tables_.revision(table)] {
    // Nor may it take the keyboard from another control that a hand has gone to since.
    if (tables_.revision(table) != revision || !table.isFirstResponder()) return;
    prepareCell(table, row, column, true);
    if (NSTableCellView* cell = table.viewAtColumn(column, row, false)) cell->becomeFirstResponder();
  };
  NSTimer::scheduledTimerWithTimeInterval(openAgainDelay, false, [tab = queue_.poster(), open] { tab.post(open); });
}

void RowEditing::prepareCell(NSTableView& table, int row, int column, bool editable) {
  NSTableCellView* cell = table.viewAtColumn(column, row, false);
  if (!cell) return;
  cell->setTag(tables_.cellTag(table, column));
  cell->setDelegate(this);
  cell->setToolTip(localizedString("Press Enter to confirm"));
  if (editable) cell->setEditable(true);
}

// --- What is typed in cells ----------------------------------------------------------------------------------------

void RowEditing::commitEditableCells(NSTableView& table) {
  commitScores(table);
  forEachEditedCell(table,
                    [this](const ValuePlace& place, int row, const std::string& text) { sweepCell(place, row, text); });
}

void RowEditing::commitAllEditableCells() {
  commitEditableCells(outlets_.valueDataSetTable);
  commitEditableCells(outlets_.valueDataHashTable);
  commitEditableCells(outlets_.valueDataSortedSetTable);
}

void RowEditing::endCellEdits(bool translate) {
  const auto end = [this, translate](const ValuePlace& place, int row, const std::string& text) {
    endCellEdit(place, row, text, translate);
  };
  commitScores(outlets_.valueDataSortedSetTable);
  for (NSTableView* table :
       {&outlets_.valueDataSetTable, &outlets_.valueDataHashTable, &outlets_.valueDataSortedSetTable}) {
    forEachEditedCell(*table, end);
  }
}

void RowEditing::controlTextDidEndEditing(const TextEdit& edit) {
  // At once: the selection may be about to change, and a save that ended the edit is about to read the score.
  if (edit.tag == scoreEditorTag) return commitScoreEditor(edit.text);
  if (!edit.table) return;
  const bool translate = outlets_.chkTranslate.state();
  queue_.poster().post([this, edit, translate, revision = tables_.revision(*edit.table)] {
    // The row that was edited may be gone, or have another number.
    if (tables_.revision(*edit.table) != revision) return;
    if (edit.tag == ValueTables::scoreCellTag) return endScoreCellEdit(edit.row, edit.text);
    for (const ValuePlace& place : tables_.places()) {
      if (place.tag == edit.tag) endCellEdit(place, edit.row, edit.text, translate);
    }
  });
}

void RowEditing::forEachEditedCell(NSTableView& table, const CommitCell& commit) {
  // Behind an alert the rows may become others: each cell is looked up and looked at anew.
  for (const int row : table.rowsWithViews()) {
    for (const ValuePlace& place : tables_.places()) {
      if (&place.table != &table) continue;
      const NSTableCellView* cell = table.viewAtColumn(place.column, row, false);
      if (!cell || !cell->isEditable() || !tables_.hasRow(table, row)) continue;
      const std::string text = cell->stringValue();
      // Only the end of an edit leaves a cell empty over a row that isn't.
      const bool wasEmptied = text.empty() && !place.rows.row(static_cast<std::size_t>(row)).text.empty();
      if (cell->isEdited() || wasEmptied) commit(place, row, text);
    }
  }
}

void RowEditing::sweepCell(const ValuePlace& place, int row, const std::string& text) {
  using Outcome = CellRow::Outcome;
  const auto index = static_cast<std::size_t>(row);
  const bool translate = outlets_.chkTranslate.state();
  if (isShownFor(place, row, text, translate)) return;
  switch (commitCell(place, row, text, translate)) {
    case Outcome::taken:
      place.table.viewAtColumn(place.column, row, false)->setToolTip(place.rows.row(index).text);
      break;
    case Outcome::tooShort:
      place.rows.setRow(index, {}, {}, true);
      tables_.showInCell(place, row);
      break;
    case Outcome::noText:
      tables_.showInCell(place, row);
      break;
    case Outcome::noBase64:
      tables_.showInCell(place, row);
      const std::string message = &place.rows == &state_.hashKey ? localizedString("Can not decode Base64 Key '{0}'")
                                                                 : localizedString("Can not decode Base64 Value '{0}'");
      showAlert(replacingPlaceholder(message, "{0}", text));
      break;
  }
}

void RowEditing::endCellEdit(const ValuePlace& place, int row, const std::string& text, bool translate) {
  const auto index = static_cast<std::size_t>(row);
  if (!isShownFor(place, row, text, translate)) {
    if (commitCell(place, row, text, translate) == CellRow::Outcome::tooShort) {
      const RowText before = place.rows.row(index);
      place.rows.setRow(index, before.text, place.rows.data()[index], true);
      if (NSTableCellView* cell = place.table.viewAtColumn(place.column, row, false)) cell->setStringValue("");
    } else {
      tables_.showInCell(place, row);
    }
  }
  tables_.showSelectedRow(place);
}

// What stands in the cell anyway isn't read: it may stand for other bytes than the row's.
bool RowEditing::isShownFor(const ValuePlace& place, int row, const std::string& text, bool translate) const {
  return text == ValueTables::shownText(place.rows.row(static_cast<std::size_t>(row)).text, translate);
}

CellRow::Outcome RowEditing::commitCell(const ValuePlace& place, int row, const std::string& text, bool translate) {
  const auto index = static_cast<std::size_t>(row);
  CellRow typed = rowTypedInCell(text, charsetTitle(), translate);
  if (typed.outcome == CellRow::Outcome::taken) {
    const bool isBase64 = typed.isBase64.value_or(place.rows.row(index).isBase64);
    place.rows.setRow(index, std::move(typed.text), std::move(typed.bytes), isBase64);
  }
  return typed.outcome;
}

// --- Scores --------------------------------------------------------------------------------------------------------

void RowEditing::commitScores(NSTableView& table) {
  if (&table != &outlets_.valueDataSortedSetTable) return;
  for (const int row : table.rowsWithViews()) {
    const NSTableCellView* cell = table.viewAtColumn(1, row, false);
    if (cell && tables_.hasRow(table, row)) state_.sortedSetScore[static_cast<std::size_t>(row)] = cell->stringValue();
  }
}

void RowEditing::endScoreCellEdit(int row, const std::string& text) {
  state_.sortedSetScore[static_cast<std::size_t>(row)] = text;
  tables_.showSelectedScore();
}

void RowEditing::commitScoreEditor(const std::string& text) {
  NSTableView& table = outlets_.valueDataSortedSetTable;
  const int row = state_.currentDataRow;
  if (text.empty() || text == "-" || !tables_.hasRow(table, row)) return;
  state_.sortedSetScore[static_cast<std::size_t>(row)] = text;
  table.reloadDataForRowIndexes({row}, {1});
}

// --- What is typed in the editors ----------------------------------------------------------------------------------

void RowEditing::textDidEndEditing(NSTextView& view) {
  for (const ValuePlace& place : tables_.places()) {
    if (&place.editor != &view) continue;
    const int row = place.table.selectedRow();
    state_.currentDataRow = row;
    if (!tables_.hasRow(place.table, row)) return;
    const auto index = static_cast<std::size_t>(row);
    std::string text = view.string();
    if (isShownFor(place, row, text, false)) return;
    EditorRow typed = rowTypedInEditor(std::move(text), charsetTitle(), place.rows.data()[index]);
    if (typed.isRefused) view.setString(typed.shown.text);
    place.rows.setRow(index, std::move(typed.shown.text), std::move(typed.bytes), typed.shown.isBase64);
    place.table.reloadDataForRowIndexes({row}, {place.column});
  }
}

void RowEditing::endEditorEdits(NSTableView& table) {
  for (const ValuePlace& place : tables_.places()) {
    if (&place.table == &table && place.editor.isFirstResponder()) table.becomeFirstResponder();
  }
  const bool hasScores = &table == &outlets_.valueDataSortedSetTable;
  if (hasScores && outlets_.sortedSetScoreTextField.isFirstResponder()) table.becomeFirstResponder();
}

}  // namespace tarn
