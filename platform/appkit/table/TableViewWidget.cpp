#include "platform/appkit/table/TableViewWidget.h"

#include "platform/appkit/FocusChange.h"
#include "platform/appkit/Fonts.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/table/TableAccessibility.h"
#include "platform/appkit/table/TableHeader.h"
#include "platform/appkit/text/ElidedLine.h"
#include "platform/foundation/Utf8.h"

#include <QFocusEvent>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>

#include <algorithm>
#include <cstdint>

namespace tarn {
namespace {

constexpr int rowHeight = NSTableView::rowHeight;
constexpr int cellPadding = 4;
constexpr std::size_t longestToolTip = 8000;  // bytes

}  // namespace

TableViewWidget::TableViewWidget(QWidget* parent)
    : RowView<QAbstractScrollArea>(parent),
      header_(new TableHeader(this)),
      cells_(*this,
             [this](TableCell& cell) {
               if (client_) client_->fillCell(cell);
             }),
      editor_(*this, *viewport(), cells_, *this) {
  installTableAccessibility();
  setFocusPolicy(Qt::StrongFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  viewport()->setBackgroundRole(QPalette::Base);
  verticalScrollBar()->setSingleStep(rowHeight);
  connect(header_, &QHeaderView::sectionResized, this, [this] {
    placeEditor();
    viewport()->update();
  });
  fitFont();
}

TableViewWidget::~TableViewWidget() = default;

QStringList TableViewWidget::columnIdentifiers() const {
  return header_->identifiers();
}

void TableViewWidget::setColumnIdentifiers(const QStringList& identifiers) {
  editor_.drop();
  header_->setIdentifiers(identifiers);
  cells_.setColumnCount(header_->columnCount());
  updateGeometries();
  showCellsInSight();
}

QStringList TableViewWidget::columnTitles() const {
  return header_->titles();
}

void TableViewWidget::setColumnTitles(const QStringList& titles) {
  header_->setTitles(titles);
  updateGeometries();
}

void TableViewWidget::reload(int rowCount) {
  editor_.drop();
  rowCount_ = rowCount;
  if (selectedRow_ >= rowCount_) selectedRow_ = -1;
  updateGeometries();
  cells_.refill(rowCount_);
  showCellsInSight();
  viewport()->update();
  announceReload(*this);
}

void TableViewWidget::reloadCell(int row, int column) {
  if (editor_.row() == row && editor_.column() == column) editor_.drop();
  cells_.refill(row, column);
  viewport()->update(cellRect(row, column));
}

void TableViewWidget::selectRow(int row, bool byUser) {
  if (row == selectedRow_) return;
  selectedRow_ = row;
  viewport()->update();
  announceSelection(*this);
  if (client_) client_->selectionChanged(byUser);
}

void TableViewWidget::scrollRowToVisible(int row) {
  if (row < 0 || row >= rowCount_) return;
  const std::int64_t top = std::int64_t{row} * rowHeight;
  const std::int64_t offset = verticalScrollBar()->value();
  const std::int64_t lowest = top + rowHeight - viewport()->height();
  verticalScrollBar()->setValue(static_cast<int>(std::min(top, std::max(offset, lowest))));
}

QRect TableViewWidget::cellRect(int row, int column) const {
  // A row far out of sight lies where the toolkit's coordinates end.
  constexpr std::int64_t farAway = 1 << 20;
  const std::int64_t top = std::int64_t{row} * rowHeight - verticalScrollBar()->value();
  return {header_->sectionViewportPosition(column), static_cast<int>(std::clamp(top, -farAway, farAway)),
          header_->sectionSize(column), rowHeight};
}

int TableViewWidget::rowAt(int y) const {
  const std::int64_t row = (std::int64_t{verticalScrollBar()->value()} + y) / rowHeight;
  return y >= 0 && row < rowCount_ ? static_cast<int>(row) : -1;
}

int TableViewWidget::columnAt(int x) const {
  return header_->logicalIndexAt(x);
}

std::string TableViewWidget::toolTipAt(const QPoint& position) const {
  const TableCell* cell = cells_.at(rowAt(position.y()), columnAt(position.x()));
  if (!cell) return {};
  if (const std::string own = cell->toolTip(); !own.empty()) return std::string(utf8Prefix(own, longestToolTip));
  // A text that is cut shows whole.
  const int width = cellRect(cell->row(), cell->column()).width() - 2 * cellPadding;
  const std::string_view whole = utf8Prefix(cell->text(), longestToolTip);
  const bool isCut = QFontMetrics(cellFont_).horizontalAdvance(toQString(whole)) > width;
  return isCut ? std::string(whole) : std::string();
}

void TableViewWidget::changeEvent(QEvent* event) {
  RowView::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
    fitFont();
    updateGeometries();
  }
}

void TableViewWidget::resizeEvent(QResizeEvent* event) {
  RowView::resizeEvent(event);
  updateGeometries();
  showCellsInSight();
}

void TableViewWidget::scrollContentsBy(int, int) {
  showCellsInSight();
  viewport()->update();
}

void TableViewWidget::focusOutEvent(QFocusEvent* event) {
  RowView::focusOutEvent(event);
  if (client_ && leavesForOtherControl(*event, *this)) client_->willLoseFocus();
}

void TableViewWidget::mousePressEvent(QMouseEvent* event) {
  // The client may show an alert, behind which the table may go.
  const QPointer<TableViewWidget> self(this);
  // The focus has come here already, which ends an edit; not so in a window without the keyboard.
  editor_.commit();
  if (!self) return;
  const QPoint position = event->position().toPoint();
  const int row = rowAt(position.y());
  const int column = row < 0 ? -1 : columnAt(position.x());
  const bool left = event->button() == Qt::LeftButton;
  const bool deselects = left && row == selectedRow_ && event->modifiers().testFlag(Qt::ControlModifier);
  if (row >= 0 && (left || event->button() == Qt::RightButton)) selectRow(deselects ? -1 : row, true);
  if (!self || !left) return;
  if (TableCell* cell = cells_.at(row, column); cell && cell->isEditable() && !deselects) openCell(*cell);
  if (client_) client_->pressed(column < 0 ? -1 : row, column);
}

void TableViewWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  mousePressEvent(event);
}

void TableViewWidget::mouseMoveEvent(QMouseEvent*) {}

void TableViewWidget::mouseReleaseEvent(QMouseEvent*) {}

void TableViewWidget::contextMenuEvent(QContextMenuEvent* event) {
  const QPointer<TableViewWidget> self(this);
  const int row = event->reason() == QContextMenuEvent::Keyboard ? -1 : rowAt(event->pos().y());
  if (row >= 0) selectRow(row, true);
  if (self) RowView::contextMenuEvent(event);
}

void TableViewWidget::keyPressEvent(QKeyEvent* event) {
  const int key = event->key();
  const bool opens = key == Qt::Key_F2 || key == Qt::Key_Return || key == Qt::Key_Enter;
  if (opens && selectedRow_ >= 0 && !event->isAutoRepeat() && client_) {
    scrollRowToVisible(selectedRow_);
    if (client_->opensCell(selectedRow_, 0)) return;
  }
  const int row = rowForKey(key, selectedRow_, rowCount_, viewport()->height() / rowHeight);
  if (row < 0) return event->ignore();
  const QPointer<TableViewWidget> self(this);
  selectRow(row, true);
  if (self) scrollRowToVisible(selectedRow_);
}

void TableViewWidget::cellChanged(const TableCell& cell) {
  viewport()->update(cellRect(cell.row(), cell.column()));
}

void TableViewWidget::openCell(TableCell& cell) {
  const int row = cell.row();
  editor_.open(cell, cellFont_);
  if (!editor_.isOpen() || editor_.row() != row) return;
  scrollRowToVisible(row);
  placeEditor();
}

std::string TableViewWidget::modelText(int row, int column) {
  TableCell fresh(*this, column);
  cells_.fill(fresh, row);
  return fresh.text();
}

std::string TableViewWidget::textAt(int row, int column) {
  const TableCell* cell = cells_.at(row, column);
  return cell ? cell->stringValue() : modelText(row, column);
}

void TableViewWidget::editorWillLoseFocus() {
  if (client_) client_->willLoseFocus();
}

void TableViewWidget::editDidEnd(TableCell& cell) {
  if (client_) client_->editDidEnd(cell);
}

void TableViewWidget::editorClosed(int row, int column, TextFieldWidget::End how) {
  viewport()->update();
  if (how == TextFieldWidget::End::tab) openNextCell(row, column, 1);
  if (how == TextFieldWidget::End::backtab) openNextCell(row, column, -1);
}

void TableViewWidget::openNextCell(int row, int column, int step) {
  int nextColumn = column + step;
  int nextRow = row;
  if (nextColumn < 0 || nextColumn >= header_->columnCount()) {
    nextRow += step;
    nextColumn = step > 0 ? 0 : header_->columnCount() - 1;
  }
  if (nextRow < 0 || nextRow >= rowCount_) return;
  const QPointer<TableViewWidget> self(this);
  selectRow(nextRow, true);
  if (!self) return;
  scrollRowToVisible(nextRow);
  if (client_) client_->opensCell(nextRow, nextColumn);
}

void TableViewWidget::fitFont() {
  cellFont_ = monospacedFont(rowHeight - 2);
}

void TableViewWidget::updateGeometries() {
  const int headerHeight = header_->sizeHint().height();
  setViewportMargins(0, headerHeight, 0, 0);
  const QRect rows = viewport()->geometry();
  header_->setGeometry(rows.left(), rows.top() - headerHeight, rows.width(), headerHeight);

  constexpr std::int64_t longestRange = 2'000'000'000;
  const std::int64_t hidden = std::int64_t{rowCount_} * rowHeight - viewport()->height();
  verticalScrollBar()->setPageStep(viewport()->height());
  verticalScrollBar()->setRange(0, static_cast<int>(std::clamp<std::int64_t>(hidden, 0, longestRange)));
}

void TableViewWidget::showCellsInSight() {
  const std::int64_t offset = verticalScrollBar()->value();
  const std::int64_t last = (offset + viewport()->height() - 1) / rowHeight;
  cells_.show(static_cast<int>(offset / rowHeight), static_cast<int>(std::min<std::int64_t>(last, rowCount_ - 1)),
              editor_.row());
  placeEditor();
}

void TableViewWidget::placeEditor() {
  // Its text stands where the cell's does, inside the frame that is painted around an open cell.
  if (editor_.isOpen()) editor_.setGeometry(cellRect(editor_.row(), editor_.column()).adjusted(2, 1, -2, -1));
}

void TableViewWidget::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  if (rowCount_ == 0) paintPlaceholder(painter, *viewport(), 0, placeholder());
  painter.setFont(cellFont_);
  for (const int row : cells_.rows()) {
    const int top = cellRect(row, 0).y();
    if (top <= event->rect().bottom() && top + rowHeight > event->rect().top()) paintRow(painter, row);
  }
  if (isActiveWindow() && hasFocus()) {
    painter.setPen(palette().color(QPalette::Active, QPalette::Highlight));
    painter.drawRect(viewport()->rect().adjusted(0, 0, -1, -1));
  }
}

void TableViewWidget::paintRow(QPainter& painter, int row) const {
  const QRect line(0, cellRect(row, 0).y(), viewport()->width(), rowHeight);
  const bool selected = row == selectedRow_;
  const bool active = isActiveWindow() && (hasFocus() || editor_.isOpen());
  const QPalette::ColorGroup group = active ? QPalette::Active : QPalette::Inactive;
  if (selected) painter.fillRect(line, palette().brush(group, QPalette::Highlight));

  const QFontMetrics metrics(cellFont_);
  // The primary face's line is centred; characters of a taller face keep to the same base line.
  const int baseLine = line.y() + (rowHeight - metrics.height()) / 2 + metrics.ascent();
  QColor separator = palette().color(QPalette::Text);
  separator.setAlpha(30);
  for (int column = 0; column < header_->columnCount(); ++column) {
    const QRect area = cellRect(row, column);
    if (column > 0) painter.fillRect(area.x() - 1, area.y(), 1, rowHeight, separator);
    const TableCell* cell = cells_.at(row, column);
    if (cell && editor_.isOpen(*cell)) {
      painter.fillRect(area, palette().base());
      painter.setPen(palette().color(QPalette::Active, QPalette::Highlight));
      painter.drawRect(area.adjusted(0, 0, -2, -1));
      continue;
    }
    if (!cell || cell->text().empty()) continue;
    painter.setPen(palette().color(group, selected ? QPalette::HighlightedText : QPalette::Text));
    painter.setClipRect(area);
    painter.drawText(area.x() + cellPadding, baseLine,
                     elidedLine(cell->text(), metrics, area.width() - 2 * cellPadding));
    painter.setClipping(false);
  }
}

}  // namespace tarn
