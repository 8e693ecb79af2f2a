#pragma once

#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSView.h"
#include "platform/foundation/NSFormatter.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class NSMenu;
class NSTableCellView;
class NSTableView;

class NSTableViewDataSource {
public:
  virtual ~NSTableViewDataSource() = default;
  virtual int numberOfRowsInTableView(const NSTableView& table) = 0;
};

class NSTableViewDelegate {
public:
  virtual ~NSTableViewDelegate() = default;

  // Fills a cell that came into sight: it is empty, not editable, without tag, delegate, formatter or tool tip.
  virtual void viewForTableColumn(NSTableView& table, int column, int row, NSTableCellView& cell) = 0;

  // The user, by mouse or keyboard, is changing the selection; `selectionDidChange` follows at once.
  virtual void tableViewSelectionIsChanging(NSTableView& table) = 0;
  // Once a change, at once, by the user or by code; not when the selection is set to what it is already.
  virtual void tableViewSelectionDidChange(NSTableView& table) = 0;
};

// Notified of what a table does as a responder, the way a subclass overrides it.
class NSTableViewResponder {
public:
  virtual ~NSTableViewResponder() = default;

  // After the table itself has handled a press of the left button; row and column are -1 beside the cells.
  virtual void mouseDown(NSTableView& table, int row, int column) = 0;
  // Before the focus leaves the table and its cells for another control of the window.
  virtual void resignFirstResponder(NSTableView& table) = 0;
};

// One cell in sight: its text, and what its text field is set to. It belongs to the table, which recycles it: keep no
// pointer beyond the current event. The cell under edit keeps its view when scrolled away.
class NSTableCellView {
public:
  virtual ~NSTableCellView() = default;

  // While the cell is open this is the text being typed.
  virtual std::string stringValue() const = 0;
  // In an open cell it replaces what was typed and makes the edit unchanged again.
  virtual void setStringValue(std::string_view text) = 0;

  virtual bool isEditable() const = 0;
  virtual void setEditable(bool editable) = 0;
  virtual int tag() const = 0;
  virtual void setTag(int tag) = 0;
  virtual std::string toolTip() const = 0;
  virtual void setToolTip(std::string_view text) = 0;
  virtual void setDelegate(NSTextFieldDelegate* delegate) = 0;
  virtual void setFormatter(std::unique_ptr<NSFormatter> formatter) = 0;

  // Opens the cell for editing with all its text selected, if it is editable. Nothing happens to one that is open.
  virtual void becomeFirstResponder() = 0;
  // True while the cell is open and the user has changed its text since it was last set by code.
  virtual bool isEdited() const = 0;
};

class NSTableColumn {
public:
  virtual ~NSTableColumn() = default;

  virtual std::string identifier() const = 0;
  virtual double width() const = 0;
  virtual void setWidth(double points) = 0;
  virtual void setMaxWidth(double points) = 0;
  virtual std::string headerToolTip() const = 0;
  virtual void setHeaderToolTip(std::string_view text) = 0;
};

// Rows of cells of one height, made for the rows in sight only: a table of millions of rows costs what its
// visible part costs. One row or none is selected; a click with Ctrl on the selected row deselects it, one below the
// rows changes nothing. Enter or F2 on a selected row opens its first cell, as a double click does. Escape ends an edit
// and puts the model's text back; Tab commits and opens the next cell.
class NSTableView final : public NSView {
public:
  // In points.
  static constexpr int rowHeight = 18;

  explicit NSTableView(QWidget* widget);
  ~NSTableView() override;

  void setDataSource(NSTableViewDataSource* source);
  void setDelegate(NSTableViewDelegate* delegate);
  void setResponder(NSTableViewResponder* responder);
  // Shown at a right click, which first selects the row under it.
  void setMenu(std::shared_ptr<NSMenu> menu);

  // Shown in the empty space of a table without rows.
  void setPlaceholderString(std::string_view text);

  int numberOfRows() const;
  int numberOfColumns() const;
  NSTableColumn& tableColumn(int index);

  // Both take effect on the cells in sight before they return, drop an open edit in them, and send no message. The
  // selected row number stays selected if it is still valid.
  void reloadData();
  void reloadDataForRowIndexes(const std::vector<int>& rows, const std::vector<int>& columns);

  // -1 where none is selected.
  int selectedRow() const;
  // Sends "did change" if it changes anything. A row beyond the table changes nothing.
  void selectRow(int row);
  void deselectAll();

  void scrollRowToVisible(int row);

  // The cell, if its row has a view; with `makeIfNecessary` also one out of sight. Nothing beyond the rows or columns.
  NSTableCellView* viewAtColumn(int column, int row, bool makeIfNecessary);
  // Each row that has a view, in ascending order.
  std::vector<int> rowsWithViews() const;

  // Opens the cell for the user at the keyboard: asked for by Enter, F2 and Tab. Without it no key opens one.
  void setOpensCell(std::function<void(int row, int column)> opens);

private:
  struct Private;
  std::unique_ptr<Private> d_;
};

}  // namespace tarn
