#pragma once

#include "workbench/TabQueue.h"
#include "workbench/TabState.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// One column of text: the tag of its cells, where it shows, its rows, and the editor of the selected one.
struct ValuePlace {
  int tag;
  NSTableView& table;
  int column;
  ValueColumn& rows;
  NSTextView& editor;
};

// What the three tables of rows and the editors under them show. Main queue only.
class ValueTables final : public NSTableViewDataSource, public NSTableViewDelegate {
public:
  static constexpr int scoreCellTag = 7;

  ValueTables(OperationTabLayout& outlets, TabState& state, TabQueue& queue);

  // Hears of edits in cells that are editable from the start.
  void setCellDelegate(NSTextFieldDelegate* delegate) { cellDelegate_ = delegate; }

  // The four columns of text.
  std::span<const ValuePlace> places() const { return places_; }
  int cellTag(const NSTableView& table, int column) const;

  // The rows as the server sent them, under the title of popValueDataCharset. The table shows them once it is reloaded.
  void setRows(ValueColumn& column, std::vector<Bytes> rows);
  void setScores(std::vector<std::string> scores);

  // The table that shows this type; nothing for a String and for what no table knows.
  NSTableView* tableForType(std::string_view type);
  bool hasRow(const NSTableView& table, int row) const;
  // Of all its columns: see ValueColumn.
  int revision(const NSTableView& table) const;

  // A row without text and bytes, in front of the one at `row` or behind the last.
  void insertRow(NSTableView& table, std::size_t row);
  // Leaves the editors as they are. `rows` ascend.
  void removeRows(NSTableView& table, const std::vector<std::size_t>& rows);

  // Empties the rows and the editors, and shows that.
  void emptyTable(NSTableView& table);
  void emptyAllTables();
  // Shows the table's rows under the title that was chosen now.
  void changeCharset(NSTableView& table);
  // Shows all cells in sight anew, as after a change of chkTranslate.
  void reloadAllTables();

  // How a cell shows a row's text.
  static std::string shownText(const std::string& text, bool translate);
  // The cell, if it has a view, shows its row anew; an edit in it is unchanged again.
  void showInCell(const ValuePlace& place, int row);
  // The editor of this column shows the selected row, if there is one.
  void showSelectedRow(const ValuePlace& place);
  void showSelectedScore();

  int numberOfRowsInTableView(const NSTableView& table) override;
  void viewForTableColumn(NSTableView& table, int column, int row, NSTableCellView& cell) override;
  void tableViewSelectionIsChanging(NSTableView& table) override;
  void tableViewSelectionDidChange(NSTableView& table) override;

private:
  bool showsScore(const NSTableView& table, int column) const;
  const ValuePlace& firstPlace(const NSTableView& table) const;
  void showRow(const ValuePlace& place, int row, NSTableCellView& cell) const;
  void showScore(int row, NSTableCellView& cell) const;
  void showInEditors(const NSTableView& table);

  OperationTabLayout& outlets_;
  TabState& state_;
  TabQueue& queue_;
  const std::array<ValuePlace, 4> places_;
  NSTextFieldDelegate* cellDelegate_ = nullptr;
};

}  // namespace tarn
