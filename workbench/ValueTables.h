#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/TabQueue.h"
#include "workbench/TabState.h"

namespace tarn {

// The three tables of rows and the editors under them. Main queue only.
class ValueTables final : public NSTableViewDataSource, public NSTableViewDelegate {
public:
  ValueTables(OperationTabLayout& outlets, TabState& state, TabQueue& queue);

  // The rows as the server sent them, under the title of popValueDataCharset. The table shows them once it is reloaded.
  void setRows(ValueColumn& column, std::vector<Bytes> rows);
  void setScores(std::vector<std::string> scores);

  // The table that shows this type; nothing for a String and for what no table knows.
  NSTableView* tableForType(std::string_view type);
  // Empties the rows and the editors, and shows that.
  void emptyTable(const NSTableView& table);
  void emptyAllTables();
  // Shows the table's rows under the title that was chosen now.
  void changeCharset(NSTableView& table);
  // Shows all cells in sight anew, as after a change of chkTranslate.
  void reloadAllTables();

  int numberOfRowsInTableView(const NSTableView& table) override;
  void viewForTableColumn(NSTableView& table, int column, int row, NSTableCellView& cell) override;
  void tableViewSelectionIsChanging(NSTableView& table) override;
  void tableViewSelectionDidChange(NSTableView& table) override;

private:
  // One column of text: the tag of its cells, where it shows, its rows, and the editor of the selected one.
  struct Place {
    int tag;
    NSTableView& table;
    int column;
    ValueColumn& rows;
    NSTextView& editor;
  };

  bool showsScore(const NSTableView& table, int column) const;
  void showInEditors(const NSTableView& table, int row);

  OperationTabLayout& outlets_;
  TabState& state_;
  TabQueue& queue_;
  const std::array<Place, 4> places_;
};

}  // namespace tarn
