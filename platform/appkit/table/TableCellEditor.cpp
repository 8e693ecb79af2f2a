#include "platform/appkit/table/TableCellEditor.h"

#include "platform/appkit/FocusChange.h"

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>

#include <utility>

namespace tarn {

TableCellEditor::TableCellEditor(QWidget& table, QWidget& viewport, TableCells& cells, TableCellEditorClient& client)
    : table_(table), cells_(cells), client_(client), widget_(new TextFieldWidget(&viewport)) {
  widget_->hide();
  widget_->setCellEditor(true);
  widget_->setFormatter([this] {
    const TableCell* open = cell();
    return open ? open->formatter() : nullptr;
  });
  connect(widget_, &TextFieldWidget::editingBegan, this, [this] {
    const TableCell* open = cell();
    if (open && open->delegate()) open->delegate()->controlTextDidBeginEditing(open->tag());
  });
  connect(widget_, &TextFieldWidget::editingEnded, this, [this] {
    TableCell* open = cell();
    if (!open) return;
    open->setText(widget_->utf8());
    client_.editDidEnd(*open);
  });
  connect(widget_, &TextFieldWidget::finished, this, [this](TextFieldWidget::End how) { finished(how); });
  // In a window without the keyboard no event reaches the old control.
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
    if (isOpen() && now && now != widget_ && now->window() == table_.window()) commit();
  });
  // Seen before the editor itself sees them: a filter's work.
  widget_->installEventFilter(this);
}

void TableCellEditor::open(TableCell& cell, const QFont& font) {
  if (isOpen(cell) || !cell.isEditable()) return;
  const int row = cell.row();
  const int column = cell.column();
  commit();
  // The control that has the focus ends its edit now, and this cell may be filled anew.
  table_.setFocus(Qt::OtherFocusReason);
  TableCell* wanted = cells_.at(row, column);
  if (!wanted || !wanted->isEditable()) return;

  row_ = row;
  column_ = column;
  widget_->setFont(font);
  widget_->setUtf8(wanted->text());
  widget_->setAccessibleName(table_.accessibleName());
  widget_->show();
  widget_->setFocus(Qt::OtherFocusReason);
  widget_->selectAll();
}

void TableCellEditor::commit() {
  if (!isOpen()) return;
  widget_->commitEditing();
  close();
}

void TableCellEditor::drop() {
  if (!isOpen()) return;
  widget_->setUtf8({});
  close();
}

void TableCellEditor::close() {
  row_ = -1;
  column_ = -1;
  // The widget lets go of a text of many megabytes, and of its undo.
  widget_->setUtf8({});
  if (QWidget* focus = table_.window()->focusWidget(); !focus || focus == widget_) {
    table_.setFocus(Qt::OtherFocusReason);
  }
  widget_->hide();
}

void TableCellEditor::finished(TextFieldWidget::End how) {
  if (!isOpen()) return;
  const int row = row_;
  const int column = column_;
  close();
  if (how != TextFieldWidget::End::focus) client_.editorClosed(row, column, how);
}

bool TableCellEditor::eventFilter(QObject* watched, QEvent* event) {
  if (watched != widget_ || !isOpen()) return false;
  if (event->type() == QEvent::FocusOut && leavesForOtherControl(static_cast<QFocusEvent&>(*event), table_)) {
    client_.editorWillLoseFocus();
  }
  if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent&>(*event).key() == Qt::Key_Escape) {
    // What the model says, as if the cell came into sight: an edit that changed nothing sends no message.
    if (TableCell* open = cell()) open->setStringValue(client_.modelText(row_, column_));
  }
  return false;
}

}  // namespace tarn
