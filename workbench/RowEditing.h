#pragma once

#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSTextView.h"
#include "workbench/CellClickableTableView.h"
#include "workbench/TabQueue.h"
#include "workbench/TabState.h"
#include "workbench/TypedRow.h"
#include "workbench/ValueTables.h"

#include <functional>
#include <string>

namespace tarn {

// How a hand changes the rows of a list, set, hash or sorted set: in the cells of the tables, and in the editors under
// them. What is typed goes into the tab's rows; nothing of it reaches the server. Main queue only.
class RowEditing final : public ClickableTableViewDelegate, public NSTextFieldDelegate, public NSTextViewDelegate {
public:
  RowEditing(OperationTabLayout& outlets, TabState& state, TabQueue& queue, ValueTables& tables);

  // What is typed in cells goes into the rows, with an alert for each text that isn't the Base64 that it must be; the
  // rows may be others when that has been closed. The second does so for all tables.
  void commitEditableCells(NSTableView& table) override;
  void commitAllEditableCells();
  // The same as at the end of each edit, in silence, for texts typed while chkTranslate said `translate`.
  void endCellEdits(bool translate);
  // Ends what is being typed in the editors under the table.
  void endEditorEdits(NSTableView& table);

  // Opens a new row: its first cell is the one to type in.
  void openNewRow(NSTableView& table, int row);

  void didDoubleClick(NSTableView& table, int row, int column) override;
  void controlTextDidBeginEditing(int) override {}
  void controlTextDidEndEditing(const TextEdit& edit) override;
  void textDidEndEditing(NSTextView& view) override;
  bool shouldChangeTextInRanges(NSTextView&, const std::vector<NSRange>&, const std::vector<std::string>&) override {
    return true;
  }

private:
  void openRow(NSTableView& table, int row, int column);
  // Once the event that is being handled has passed: it may take the focus.
  void openAgainLater(NSTableView& table, int row, int column);
  void prepareCell(NSTableView& table, int row, int column, bool editable);

  // Calls `commit` with each cell whose text is a hand's and not yet its row's.
  using CommitCell = std::function<void(const ValuePlace& place, int row, const std::string& text)>;
  void forEachEditedCell(NSTableView& table, const CommitCell& commit);
  void sweepCell(const ValuePlace& place, int row, const std::string& text);
  void endCellEdit(const ValuePlace& place, int row, const std::string& text, bool translate);
  bool isShownFor(const ValuePlace& place, int row, const std::string& text, bool translate) const;
  CellRow::Outcome commitCell(const ValuePlace& place, int row, const std::string& text, bool translate);
  void commitScores(NSTableView& table);
  void endScoreCellEdit(int row, const std::string& text);
  void commitScoreEditor(const std::string& text);

  std::string charsetTitle() const { return outlets_.popValueDataCharset.titleOfSelectedItem(); }

  OperationTabLayout& outlets_;
  TabState& state_;
  TabQueue& queue_;
  ValueTables& tables_;
  CellClickableTableView setTable_;
  CellClickableTableView hashTable_;
  CellClickableTableView sortedSetTable_;
};

}  // namespace tarn
