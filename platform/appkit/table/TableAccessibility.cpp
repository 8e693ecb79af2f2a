#include "platform/appkit/table/TableAccessibility.h"

#include "platform/appkit/Utf8.h"
#include "platform/appkit/table/TableHeader.h"
#include "platform/appkit/table/TableViewWidget.h"
#include "platform/appkit/text/ElidedLine.h"
#include "platform/foundation/Utf8.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace tarn {
namespace {

constexpr std::size_t longestSpokenText = 8000;  // bytes

class AccessibleCell final : public QAccessibleInterface, public QAccessibleTableCellInterface {
public:
  AccessibleCell(TableViewWidget& table, int row, int column) : table_(&table), row_(row), column_(column) {}

  bool isValid() const override { return table_ && row_ < table_->rowCount(); }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return table_ ? table_->window()->windowHandle() : nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(table_); }
  QAccessibleInterface* child(int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QAccessible::Role role() const override { return QAccessible::Cell; }
  void setText(QAccessible::Text, const QString&) override {}

  QString text(QAccessible::Text kind) const override {
    if (kind != QAccessible::Name || !isValid()) return {};
    return toQString(utf8Prefix(table_->textAt(row_, column_), longestSpokenText));
  }

  QRect rect() const override {
    if (!isValid()) return {};
    const QRect area = table_->cellRect(row_, column_);
    return {table_->viewport()->mapToGlobal(area.topLeft()), area.size()};
  }

  QAccessible::State state() const override {
    QAccessible::State state;
    if (!isValid()) return state;
    const TableCell* cell = table_->cells().at(row_, column_);
    state.selectable = true;
    state.focusable = true;
    state.selected = isSelected();
    state.focused = isSelected() && table_->hasFocus();
    state.editable = cell && cell->isEditable();
    state.offscreen = !table_->viewport()->rect().intersects(table_->cellRect(row_, column_));
    return state;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::TableCellInterface ? static_cast<QAccessibleTableCellInterface*>(this) : nullptr;
  }

  bool isSelected() const override { return table_ && table_->selectedRow() == row_; }
  QList<QAccessibleInterface*> columnHeaderCells() const override { return {}; }
  QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
  int columnIndex() const override { return column_; }
  int rowIndex() const override { return row_; }
  int columnExtent() const override { return 1; }
  int rowExtent() const override { return 1; }
  QAccessibleInterface* table() const override { return parent(); }

private:
  QPointer<TableViewWidget> table_;
  int row_;
  int column_;
};

// Its children are the cells, row by row; those that were asked for live until the next reload.
class AccessibleTable final : public QAccessibleWidget, public QAccessibleTableInterface {
public:
  explicit AccessibleTable(TableViewWidget& table) : QAccessibleWidget(&table, QAccessible::Table) {}
  ~AccessibleTable() override { forgetCells(); }

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::TableInterface) return static_cast<QAccessibleTableInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }

  int childCount() const override {
    const std::int64_t cells = std::int64_t{rowCount()} * columnCount();
    return static_cast<int>(std::min<std::int64_t>(cells, std::numeric_limits<int>::max()));
  }

  QAccessibleInterface* child(int index) const override {
    return columnCount() > 0 ? cellAt(index / columnCount(), index % columnCount()) : nullptr;
  }

  int indexOfChild(const QAccessibleInterface* child) const override {
    auto* cell = const_cast<QAccessibleInterface*>(child)->tableCellInterface();
    return cell ? cell->rowIndex() * columnCount() + cell->columnIndex() : -1;
  }

  QAccessibleInterface* childAt(int x, int y) const override {
    const QPoint position = view().viewport()->mapFromGlobal(QPoint(x, y));
    return cellAt(view().rowAt(position.y()), view().columnAt(position.x()));
  }

  QAccessibleInterface* focusChild() const override { return cellAt(view().selectedRow(), 0); }

  QAccessibleInterface* cellAt(int row, int column) const override {
    if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount()) return nullptr;
    const qint64 key = qint64{row} * columnCount() + column;
    const auto known = cells_.constFind(key);
    if (known != cells_.cend()) return QAccessible::accessibleInterface(*known);
    auto* cell = new AccessibleCell(view(), row, column);
    cells_.insert(key, QAccessible::registerAccessibleInterface(cell));
    return cell;
  }

  QAccessibleInterface* caption() const override { return nullptr; }
  QAccessibleInterface* summary() const override { return nullptr; }
  int rowCount() const override { return view().rowCount(); }
  int columnCount() const override { return view().header().columnCount(); }
  QString columnDescription(int column) const override { return view().columnTitles().value(column); }
  QString rowDescription(int) const override { return {}; }

  int selectedCellCount() const override { return selectedRowCount() * columnCount(); }
  int selectedColumnCount() const override { return 0; }
  int selectedRowCount() const override { return view().selectedRow() >= 0 ? 1 : 0; }
  QList<int> selectedColumns() const override { return {}; }
  QList<int> selectedRows() const override {
    return selectedRowCount() > 0 ? QList<int>{view().selectedRow()} : QList<int>();
  }
  QList<QAccessibleInterface*> selectedCells() const override {
    QList<QAccessibleInterface*> cells;
    for (int column = 0; selectedRowCount() > 0 && column < columnCount(); ++column) {
      cells += cellAt(view().selectedRow(), column);
    }
    return cells;
  }

  bool isColumnSelected(int) const override { return false; }
  bool isRowSelected(int row) const override { return row >= 0 && view().selectedRow() == row; }
  bool selectRow(int row) override {
    if (row < 0 || row >= rowCount()) return false;
    view().selectRow(row, true);
    return true;
  }
  bool selectColumn(int) override { return false; }
  bool unselectRow(int row) override {
    if (!isRowSelected(row)) return false;
    view().selectRow(-1, true);
    return true;
  }
  bool unselectColumn(int) override { return false; }

  void modelChange(QAccessibleTableModelChangeEvent*) override { forgetCells(); }

private:
  TableViewWidget& view() const { return *static_cast<TableViewWidget*>(widget()); }

  void forgetCells() {
    for (const QAccessible::Id id : std::as_const(cells_))
      QAccessible::deleteAccessibleInterface(id);
    cells_.clear();
  }

  mutable QHash<qint64, QAccessible::Id> cells_;
};

QAccessibleInterface* accessibleTable(const QString&, QObject* object) {
  auto* table = dynamic_cast<TableViewWidget*>(object);
  return table ? new AccessibleTable(*table) : nullptr;
}

}  // namespace

void installTableAccessibility() {
  static const bool installed = [] {
    QAccessible::installFactory(accessibleTable);
    return true;
  }();
  static_cast<void>(installed);
}

void announceReload(TableViewWidget& table) {
  if (!QAccessible::isActive()) return;
  QAccessibleTableModelChangeEvent event(&table, QAccessibleTableModelChangeEvent::ModelReset);
  QAccessible::updateAccessibility(&event);
}

void announceSelection(TableViewWidget& table) {
  if (!QAccessible::isActive()) return;
  QAccessibleEvent selection(&table, QAccessible::Selection);
  QAccessible::updateAccessibility(&selection);
  if (table.selectedRow() < 0) return;
  QAccessibleEvent focus(&table, QAccessible::Focus);
  focus.setChild(table.selectedRow() * table.header().columnCount());
  QAccessible::updateAccessibility(&focus);
}

}  // namespace tarn
