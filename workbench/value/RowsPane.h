#pragma once

#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSTextView.h"
#include "workbench/WorkbenchTab.h"
#include "workbench/value/DoubleClicks.h"
#include "workbench/value/ValueRows.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace tarn {

// The rows of one kind of value: their table, the editors of the selected row under it, and what the row buttons and
// the table's menu do. What is typed in a cell or an editor goes into the rows; nothing of it reaches the server. Main
// queue only.
class RowsPane final : public NSTableViewDataSource,
                       public NSTableViewDelegate,
                       public NSTableViewResponder,
                       public NSTextFieldDelegate,
                       public NSTextViewDelegate {
public:
  // A column of the table; without an editor it is that of the scores.
  struct Column {
    int cellTag;
    // Of the table's width.
    double share;
    NSTextView* editor;
  };
  struct Controls {
    NSTableView& table;
    NSView& scrollView;
    std::vector<Column> columns;
    // Those of the editors, with their labels.
    std::vector<NSView*> viewsBelow;
    // Null where there are no scores.
    NSTextField* scoreEditor;
    std::string menuTitle;
  };

  RowsPane(WorkbenchTab& tab, Controls controls);
  RowsPane(const RowsPane&) = delete;
  RowsPane& operator=(const RowsPane&) = delete;
  ~RowsPane() override;

  ValueRows& rows() { return rows_; }

  void setHidden(bool hidden);
  void fitColumns();

  // The rows as the server sent them. The table shows them once it is reloaded.
  void setRows(LoadedRows rows);
  // Shows all cells in sight anew.
  void reload() { controls_.table.reloadData(); }
  // No rows, and empty editors.
  void empty();
  // No row stands in the editors, whatever they show.
  void forgetEditedRow() { editedRow_ = -1; }
  // Shows the rows in the form that was chosen now.
  void changeCharset();

  // Behind the selected row of a list or set, else at the end. The new row is selected, and open.
  void addRow();
  // Text being typed in the selected row goes with it.
  void deleteSelectedRow();

  // What is typed in cells goes into the rows, with an alert for each text that isn't the Base64 that it must be; the
  // rows may be others when that has been closed, and the pane may be gone.
  void commitCells();
  // The same as at the end of each edit, in silence, for texts typed while chkTranslate said `translates`.
  void endCellEdits(bool translates);

  int numberOfRowsInTableView(const NSTableView& table) override;
  void viewForTableColumn(NSTableView& table, int column, int row, NSTableCellView& cell) override;
  void tableViewSelectionIsChanging(NSTableView& table) override;
  void tableViewSelectionDidChange(NSTableView& table) override;
  void mouseDown(NSTableView& table, int row, int column) override;
  void resignFirstResponder(NSTableView& table) override;
  void controlTextDidBeginEditing(int) override {}
  void controlTextDidEndEditing(const TextEdit& edit) override;
  void textDidEndEditing(NSTextView& view) override;
  bool shouldChangeTextInRanges(NSTextView&, const std::vector<NSRange>&, const std::vector<std::string>&) override {
    return true;
  }

private:
  enum class End { sweep, edit };

  void setMenu();
  bool isOfScores(int column) const { return !controls_.columns[static_cast<std::size_t>(column)].editor; }
  int columnCount() const { return static_cast<int>(controls_.columns.size()); }
  NSTableCellView* cell(int column, int row) { return controls_.table.viewAtColumn(column, row, false); }

  void openRow(int row, int column);
  void openNewRow(int row);
  void openCell(int column, int row);
  // Once the event that is being handled has passed: it may take the focus.
  void openAgainLater(int row, int column);
  void prepareCell(int column, int row);

  // Calls `take` with each cell of text that the user has changed and whose text isn't its row's yet.
  void forEachEditedCell(const std::function<void(int column, int row, const std::string& text)>& take);
  void takeCell(int column, int row, const std::string& text, bool translates, End end);
  void refuseBase64(int column, const std::string& text) const;
  void takeScores();
  void takeScoreOfEditor(const std::string& text);
  void endEditorEdits();

  std::string textOf(int column, int row) const;
  void fillCell(int column, int row, NSTableCellView& cell) const;
  // The cell, if it has a view, shows its row anew; an edit in it is unchanged again.
  void showInCell(int column, int row);
  // The editor of this column shows the selected row, if there is one.
  void showInEditor(int column);
  // All editors do; without a selected row they are empty.
  void showInEditors();

  WorkbenchTab& tab_;
  const Controls controls_;
  ValueRows rows_;
  DoubleClicks clicks_;
  // The row in the editors, or -1.
  int editedRow_ = -1;
};

}  // namespace tarn
