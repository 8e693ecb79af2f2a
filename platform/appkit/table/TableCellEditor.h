#pragma once

#include "platform/appkit/table/TableCells.h"
#include "platform/appkit/text/TextFieldWidget.h"

#include <QObject>
#include <QRect>

namespace tarn {

// What the editor asks and notifies.
class TableCellEditorClient {
public:
  virtual ~TableCellEditorClient() = default;

  // The cell's text under a fresh look at the model.
  virtual std::string modelText(int row, int column) = 0;
  // Before the focus leaves the open cell for a control outside the table.
  virtual void editorWillLoseFocus() = 0;
  // The edit ended after a beginning; the cell has the text.
  virtual void editDidEnd(TableCell& cell) = 0;
  // A key closed the cell.
  virtual void editorClosed(int row, int column, TextFieldWidget::End how) = 0;
};

// The one open cell of a table. A single line editor serves all cells; between edits it is hidden.
class TableCellEditor final : public QObject {
public:
  // `table` gets the focus back; the editor lies in `viewport`. All of them outlive the editor.
  TableCellEditor(QWidget& table, QWidget& viewport, TableCells& cells, TableCellEditorClient& client);

  bool isOpen() const { return row_ >= 0; }
  // -1 while no cell is open.
  int row() const { return row_; }
  int column() const { return column_; }
  bool isOpen(const TableCell& cell) const { return &cell == this->cell(); }

  // Ends an edit under way in another cell and opens this one, all its text selected. Nothing happens if the cell is
  // open already, is not editable, or stops being so when the control that loses the focus ends its edit.
  void open(TableCell& cell, const QFont& font);

  std::string text() const { return widget_->utf8(); }
  void setText(std::string_view text) { widget_->setUtf8(text); }
  bool isEdited() const { return widget_->isEdited(); }

  // Ends the edit as a change of focus does; the table gets the focus.
  void commit();
  // Closes the cell without a message.
  void drop();

  void setGeometry(const QRect& rectangle) { widget_->setGeometry(rectangle); }

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  TableCell* cell() const { return cells_.at(row_, column_); }
  void close();
  void finished(TextFieldWidget::End how);

  QWidget& table_;
  TableCells& cells_;
  TableCellEditorClient& client_;
  TextFieldWidget* widget_;  // the viewport's child
  int row_ = -1;
  int column_ = -1;
};

}  // namespace tarn
