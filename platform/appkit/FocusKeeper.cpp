#include "platform/appkit/FocusKeeper.h"

#include "platform/appkit/NSView.h"
#include "platform/appkit/table/TableViewWidget.h"
#include "platform/appkit/text/TextInputWidget.h"

#include <QPointer>

namespace tarn {

struct FocusKeeper::Private {
  QPointer<QWidget> widget;
  // The table whose open cell `widget` was the editor of.
  QPointer<TableViewWidget> table;
  int row = -1;
  int column = -1;
  std::size_t anchor = 0;
  std::size_t caret = 0;
};

FocusKeeper::FocusKeeper(const NSView& view) : d_(std::make_unique<Private>()) {
  d_->widget = view.widget()->window()->focusWidget();
  if (!d_->widget) return;
  if (const auto* text = dynamic_cast<TextInputWidget*>(d_->widget.data())) {
    d_->caret = text->caret();
    d_->anchor = text->caret() == text->selectionStart() ? text->selectionEnd() : text->selectionStart();
  }
  const QWidget* viewport = d_->widget->parentWidget();
  auto* table = viewport ? dynamic_cast<TableViewWidget*>(viewport->parentWidget()) : nullptr;
  if (!table || table->openRow() < 0) return;
  d_->table = table;
  d_->row = table->openRow();
  d_->column = table->openColumn();
}

FocusKeeper::~FocusKeeper() = default;

void FocusKeeper::restore() const {
  if (!d_->widget) return;
  if (d_->table) {
    d_->table->setFocus(Qt::OtherFocusReason);
    // It may have closed for good: the row is another one by now, or gone.
    TableCell* cell = d_->table->cells().at(d_->row, d_->column);
    if (cell) cell->becomeFirstResponder();
    if (d_->table->openRow() != d_->row || d_->table->openColumn() != d_->column) return;
  } else {
    d_->widget->setFocus(Qt::OtherFocusReason);
  }
  auto* text = dynamic_cast<TextInputWidget*>(d_->widget.data());
  if (text) text->setSelection(d_->anchor, d_->caret);
}

}  // namespace tarn
