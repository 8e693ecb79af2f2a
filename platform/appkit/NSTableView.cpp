#include "platform/appkit/NSTableView.h"

#include "platform/appkit/Utf8.h"
#include "platform/appkit/table/TableHeader.h"
#include "platform/appkit/table/TableViewWidget.h"

#include <QPointer>

namespace tarn {

struct NSTableView::Private final : TableViewClient {
  Private(NSTableView& owner, QWidget* view) : table(owner), widget(static_cast<TableViewWidget*>(view)) {
    widget->setClient(this);
  }

  ~Private() override {
    if (widget) widget->setClient(nullptr);
  }

  void fillCell(TableCell& cell) override {
    if (delegate) delegate->viewForTableColumn(table, cell.column(), cell.row(), cell);
  }

  void selectionChanged(bool byUser) override {
    if (!delegate) return;
    if (byUser) delegate->tableViewSelectionIsChanging(table);
    if (delegate) delegate->tableViewSelectionDidChange(table);
  }

  void pressed(int row, int column) override {
    if (responder) responder->mouseDown(table, row, column);
  }

  void willLoseFocus() override {
    if (responder) responder->resignFirstResponder(table);
  }

  void editDidEnd(TableCell& cell) override {
    if (!cell.delegate()) return;
    const TextEdit edit{cell.tag(), cell.text(), nullptr, &table, cell.row(), cell.column()};
    cell.delegate()->controlTextDidEndEditing(edit);
  }

  bool opensCell(int row, int column) override {
    if (!opens) return false;
    opens(row, column);
    return true;
  }

  bool hasRow(int row) const { return row >= 0 && row < widget->rowCount(); }

  NSTableView& table;
  QPointer<TableViewWidget> widget;
  NSTableViewDataSource* source = nullptr;
  NSTableViewDelegate* delegate = nullptr;
  NSTableViewResponder* responder = nullptr;
  std::function<void(int row, int column)> opens;
};

NSTableView::NSTableView(QWidget* widget) : NSView(widget), d_(std::make_unique<Private>(*this, widget)) {}

NSTableView::~NSTableView() = default;

void NSTableView::setDataSource(NSTableViewDataSource* source) {
  d_->source = source;
}

void NSTableView::setDelegate(NSTableViewDelegate* delegate) {
  d_->delegate = delegate;
}

void NSTableView::setResponder(NSTableViewResponder* responder) {
  d_->responder = responder;
}

void NSTableView::setMenu(std::shared_ptr<NSMenu> menu) {
  d_->widget->setMenu(std::move(menu));
}

void NSTableView::setPlaceholderString(std::string_view text) {
  d_->widget->setPlaceholder(toQString(text));
}

int NSTableView::numberOfRows() const {
  return d_->widget->rowCount();
}

int NSTableView::numberOfColumns() const {
  return d_->widget->header().columnCount();
}

NSTableColumn& NSTableView::tableColumn(int index) {
  return d_->widget->header().column(index);
}

void NSTableView::reloadData() {
  d_->widget->reload(d_->source ? d_->source->numberOfRowsInTableView(*this) : 0);
}

void NSTableView::reloadDataForRowIndexes(const std::vector<int>& rows, const std::vector<int>& columns) {
  for (const int row : rows) {
    for (const int column : columns)
      d_->widget->reloadCell(row, column);
  }
}

int NSTableView::selectedRow() const {
  return d_->widget->selectedRow();
}

void NSTableView::selectRow(int row) {
  if (d_->hasRow(row)) d_->widget->selectRow(row, false);
}

void NSTableView::deselectAll() {
  d_->widget->selectRow(-1, false);
}

void NSTableView::scrollRowToVisible(int row) {
  d_->widget->scrollRowToVisible(row);
}

NSTableCellView* NSTableView::viewAtColumn(int column, int row, bool makeIfNecessary) {
  if (makeIfNecessary && d_->hasRow(row)) d_->widget->cells().make(row);
  return d_->widget->cells().at(row, column);
}

std::vector<int> NSTableView::rowsWithViews() const {
  return d_->widget->cells().rows();
}

void NSTableView::setOpensCell(std::function<void(int row, int column)> opens) {
  d_->opens = std::move(opens);
}

}  // namespace tarn
