#include "workbench/value/RowsPane.h"

#include "formatters/RequiredCouldNegativeDoubleFormatter.h"
#include "platform/appkit/NSMenu.h"
#include "platform/foundation/DisposeInBackground.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSTimer.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace tarn {

namespace {

constexpr double openAgainDelay = 0.1;

double secondsSince1970() {
  return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::size_t textColumns(const RowsPane::Controls& controls) {
  return controls.columns.size() - (controls.scoreEditor ? 1 : 0);
}

}  // namespace

RowsPane::RowsPane(WorkbenchTab& tab, Controls controls)
    : tab_(tab), controls_(std::move(controls)), rows_(textColumns(controls_), controls_.scoreEditor != nullptr) {
  NSTableView& table = controls_.table;
  table.setDataSource(this);
  table.setDelegate(this);
  table.setResponder(this);
  table.setOpensCell([this](int row, int column) { openRow(row, column); });
  setMenu();
  for (const Column& column : controls_.columns) {
    if (column.editor) column.editor->setDelegate(this);
  }
  if (!controls_.scoreEditor) return;
  controls_.scoreEditor->setFormatter(std::make_unique<RequiredCouldNegativeDoubleFormatter>());
  controls_.scoreEditor->setDelegate(this);
}

RowsPane::~RowsPane() {
  controls_.table.setResponder(nullptr);
}

void RowsPane::setMenu() {
  const auto menu = std::make_shared<NSMenu>(controls_.menuTitle);
  menu->addItem(localizedString("Delete Selected Row(s)"), [this] { deleteSelectedRow(); });
  menu->addItem(localizedString("Add Row"), [this] { addRow(); });
  controls_.table.setMenu(menu);
}

void RowsPane::setHidden(bool hidden) {
  controls_.scrollView.setHidden(hidden);
  for (NSView* const view : controls_.viewsBelow)
    view->setHidden(hidden);
}

void RowsPane::fitColumns() {
  constexpr double frameAndScroller = 8.0;
  const double width = controls_.scrollView.frame().width - frameAndScroller;
  for (int column = 0; column < columnCount(); ++column) {
    const double share = controls_.columns[static_cast<std::size_t>(column)].share;
    controls_.table.tableColumn(column).setMaxWidth(share * width);
    controls_.table.tableColumn(column).setWidth(share * width);
  }
}

// --- Rows ----------------------------------------------------------------------------------------------------------

void RowsPane::setRows(LoadedRows rows) {
  const std::size_t before = rows_.rowCount();
  rows_.exchange(rows, tab_.valueForm());
  disposeInBackground(std::move(rows), before);
}

void RowsPane::empty() {
  setRows({});
  reload();
  showInEditors();
}

void RowsPane::changeCharset() {
  rows_.setForm(tab_.valueForm());
  reload();
}

void RowsPane::addRow() {
  const std::shared_ptr<void> tab = tab_.queue.tab();
  const int revision = rows_.revision();
  commitCells();
  endEditorEdits();
  // Behind an alert another value may have come.
  if (rows_.revision() != revision) return;

  NSTableView& table = controls_.table;
  const bool isList = columnCount() == 1;
  const bool isBehindSelected = isList && rows_.hasRow(table.selectedRow());
  const int row = isBehindSelected ? table.selectedRow() + 1 : numberOfRowsInTableView(table);
  rows_.insertRow(static_cast<std::size_t>(row));
  reload();
  table.scrollRowToVisible(row);
  table.viewAtColumn(0, row, true);
  table.selectRow(row);
  openNewRow(row);
  editedRow_ = row;
}

void RowsPane::deleteSelectedRow() {
  const int row = controls_.table.selectedRow();
  if (!rows_.hasRow(row)) return;
  // Text being typed belongs to a row that goes, not to the one that takes its number.
  endEditorEdits();
  rows_.removeRow(static_cast<std::size_t>(row));
  reload();
}

// --- Opening cells -------------------------------------------------------------------------------------------------

void RowsPane::mouseDown(NSTableView&, int row, int column) {
  if (row < 0 || column < 0 || !clicks_.click(row, secondsSince1970())) return;
  openRow(row, column);
  openAgainLater(row, column);
}

void RowsPane::openRow(int row, int column) {
  // The only cell of a row closes with the next one; those of a row of several stay open.
  if (columnCount() == 1) {
    for (const int each : controls_.table.rowsWithViews())
      cell(0, each)->setEditable(false);
  }
  for (int each = 0; each < columnCount(); ++each) {
    prepareCell(each, row);
    if (NSTableCellView* const view = cell(each, row)) view->setEditable(true);
  }
  openCell(column, row);
}

void RowsPane::openNewRow(int row) {
  for (int column = 1; column < columnCount(); ++column)
    prepareCell(column, row);
  openCell(0, row);
  openAgainLater(row, 0);
}

void RowsPane::openCell(int column, int row) {
  prepareCell(column, row);
  NSTableCellView* const view = cell(column, row);
  if (!view) return;
  view->setEditable(true);
  view->becomeFirstResponder();
}

void RowsPane::openAgainLater(int row, int column) {
  const auto open = [this, row, column, revision = rows_.revision()] {
    // Nor may it take the keyboard from another control that the user has gone to since.
    if (rows_.revision() == revision && controls_.table.isFirstResponder()) openCell(column, row);
  };
  NSTimer::scheduledTimerWithTimeInterval(openAgainDelay, false, [tab = tab_.queue.poster(), open] { tab.post(open); });
}

void RowsPane::prepareCell(int column, int row) {
  NSTableCellView* const view = cell(column, row);
  if (!view) return;
  view->setTag(controls_.columns[static_cast<std::size_t>(column)].cellTag);
  view->setDelegate(this);
  view->setToolTip(localizedString("Press Enter to confirm"));
}

// --- What is typed in cells ----------------------------------------------------------------------------------------

void RowsPane::resignFirstResponder(NSTableView&) {
  commitCells();
}

void RowsPane::commitCells() {
  takeScores();
  forEachEditedCell([this](int column, int row, const std::string& text) {
    takeCell(column, row, text, tab_.outlets.chkTranslate.state(), End::sweep);
  });
}

void RowsPane::endCellEdits(bool translates) {
  takeScores();
  forEachEditedCell([this, translates](int column, int row, const std::string& text) {
    takeCell(column, row, text, translates, End::edit);
  });
}

void RowsPane::controlTextDidEndEditing(const TextEdit& edit) {
  // At once: the selection may be about to change, and a save that ended the edit is about to read the score.
  if (!edit.table) return takeScoreOfEditor(edit.text);
  const bool translates = tab_.outlets.chkTranslate.state();
  tab_.queue.poster().post([this, edit, translates, revision = rows_.revision()] {
    // The row that was edited may be gone, or have another number.
    if (rows_.revision() != revision) return;
    if (!isOfScores(edit.column)) return takeCell(edit.column, edit.row, edit.text, translates, End::edit);
    rows_.setScore(static_cast<std::size_t>(edit.row), edit.text);
    showInEditor(edit.column);
  });
}

void RowsPane::forEachEditedCell(const std::function<void(int column, int row, const std::string& text)>& take) {
  const std::shared_ptr<void> tab = tab_.queue.tab();
  // Behind an alert the rows may become others: each cell is looked up and looked at anew.
  for (const int row : controls_.table.rowsWithViews()) {
    for (int column = 0; column < columnCount(); ++column) {
      const NSTableCellView* const view = cell(column, row);
      if (isOfScores(column) || !view || !view->isEditable() || !rows_.hasRow(row)) continue;
      const std::string text = view->stringValue();
      // Only the end of an edit leaves a cell empty over a row that isn't.
      const bool wasEmptied = text.empty() && !textOf(column, row).empty();
      if (view->isEdited() || wasEmptied) take(column, row, text);
    }
  }
}

void RowsPane::takeCell(int column, int row, const std::string& text, bool translates, End end) {
  using Outcome = TypedCell::Outcome;
  TextForm form = tab_.valueForm();
  form.translates = translates;
  const auto columnIndex = static_cast<std::size_t>(column);
  const auto rowIndex = static_cast<std::size_t>(row);
  const Outcome outcome = rows_.takeCellText(columnIndex, rowIndex, text, form);
  const bool isSwept = end == End::sweep;
  if (isSwept && outcome == Outcome::tooShort) rows_.clearCell(columnIndex, rowIndex);
  if (isSwept && outcome == Outcome::taken) {
    cell(column, row)->setToolTip(textOf(column, row));
  } else if (!isSwept && outcome == Outcome::tooShort) {
    if (NSTableCellView* const view = cell(column, row)) view->setStringValue("");
  } else if (outcome != Outcome::unchanged) {
    showInCell(column, row);
  }
  if (isSwept && outcome == Outcome::noBase64) refuseBase64(column, text);
  if (!isSwept) showInEditor(column);
}

void RowsPane::refuseBase64(int column, const std::string& text) const {
  const bool isHash = rows_.columns().size() > 1;
  const std::string message = isHash && column == 0 ? localizedString("Can not decode Base64 Key '{0}'")
                                                    : localizedString("Can not decode Base64 Value '{0}'");
  showAlert(replacingPlaceholder(message, "{0}", text));
}

// --- Scores --------------------------------------------------------------------------------------------------------

void RowsPane::takeScores() {
  if (!rows_.hasScores()) return;
  for (const int row : controls_.table.rowsWithViews()) {
    const NSTableCellView* const view = cell(columnCount() - 1, row);
    if (view && rows_.hasRow(row)) rows_.setScore(static_cast<std::size_t>(row), view->stringValue());
  }
}

void RowsPane::takeScoreOfEditor(const std::string& text) {
  if (text.empty() || text == "-" || !rows_.hasRow(editedRow_)) return;
  rows_.setScore(static_cast<std::size_t>(editedRow_), text);
  controls_.table.reloadDataForRowIndexes({editedRow_}, {columnCount() - 1});
}

// --- What is typed in the editors ----------------------------------------------------------------------------------

void RowsPane::textDidEndEditing(NSTextView& view) {
  const auto found = std::ranges::find(controls_.columns, &view, &Column::editor);
  const auto column = static_cast<int>(found - controls_.columns.begin());
  const int row = controls_.table.selectedRow();
  editedRow_ = row;
  if (!rows_.hasRow(row)) return;
  const ValueRows::EditorOutcome outcome = rows_.takeEditorText(
      static_cast<std::size_t>(column), static_cast<std::size_t>(row), view.string(), tab_.valueForm());
  if (outcome == ValueRows::EditorOutcome::unchanged) return;
  if (outcome == ValueRows::EditorOutcome::refused) view.setString(textOf(column, row));
  controls_.table.reloadDataForRowIndexes({row}, {column});
}

void RowsPane::endEditorEdits() {
  const auto leave = [this](const NSView* editor) {
    if (editor && editor->isFirstResponder()) controls_.table.becomeFirstResponder();
  };
  for (const Column& column : controls_.columns)
    leave(column.editor);
  leave(controls_.scoreEditor);
}

// --- What table and editors show -----------------------------------------------------------------------------------

int RowsPane::numberOfRowsInTableView(const NSTableView&) {
  return static_cast<int>(rows_.rowCount());
}

void RowsPane::viewForTableColumn(NSTableView&, int column, int row, NSTableCellView& cell) {
  if (!rows_.hasRow(row)) return;
  if (!isOfScores(column)) return fillCell(column, row, cell);
  cell.setStringValue(rows_.scores()[static_cast<std::size_t>(row)]);
  cell.setFormatter(std::make_unique<RequiredCouldNegativeDoubleFormatter>());
  cell.setTag(controls_.columns[static_cast<std::size_t>(column)].cellTag);
  cell.setDelegate(this);
  cell.setEditable(true);
}

void RowsPane::fillCell(int column, int row, NSTableCellView& cell) const {
  const std::string text = textOf(column, row);
  cell.setStringValue(cellText(text, tab_.outlets.chkTranslate.state()));
  cell.setToolTip(text);
}

std::string RowsPane::textOf(int column, int row) const {
  return rows_.columns()[static_cast<std::size_t>(column)].text(static_cast<std::size_t>(row));
}

void RowsPane::showInCell(int column, int row) {
  if (NSTableCellView* const view = cell(column, row)) fillCell(column, row, *view);
}

void RowsPane::tableViewSelectionIsChanging(NSTableView& table) {
  editedRow_ = table.selectedRow();
}

void RowsPane::tableViewSelectionDidChange(NSTableView&) {
  showInEditors();
}

void RowsPane::showInEditor(int column) {
  const int row = controls_.table.selectedRow();
  if (!rows_.hasRow(row)) return;
  if (isOfScores(column)) {
    controls_.scoreEditor->setStringValue(rows_.scores()[static_cast<std::size_t>(row)]);
  } else {
    controls_.columns[static_cast<std::size_t>(column)].editor->setString(textOf(column, row));
  }
}

void RowsPane::showInEditors() {
  for (int column = 0; column < columnCount(); ++column) {
    NSTextView* const editor = controls_.columns[static_cast<std::size_t>(column)].editor;
    if (editor) {
      editor->setString("");
    } else {
      controls_.scoreEditor->setStringValue("");
    }
    showInEditor(column);
  }
}

}  // namespace tarn
