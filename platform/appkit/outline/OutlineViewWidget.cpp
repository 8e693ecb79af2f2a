#include "platform/appkit/outline/OutlineViewWidget.h"

#include "platform/appkit/ImageIcon.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/ElidedLine.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace tarn {
namespace {

constexpr int levelWidth = 16;
constexpr int imageSize = 16;
constexpr int padding = 6;
constexpr int imageGap = 6;

}  // namespace

OutlineViewWidget::OutlineViewWidget(QWidget* parent)
    : RowView<QTreeView>(parent), items_(std::make_unique<OutlineModel>()) {
  setModel(items_.get());
  setHeaderHidden(true);
  header()->setStretchLastSection(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setIndentation(levelWidth);
  setUniformRowHeights(true);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setAutoScroll(false);
  setAnimated(false);
  viewport()->setAttribute(Qt::WA_Hover);
}

OutlineViewWidget::~OutlineViewWidget() {
  setModel(nullptr);
}

void OutlineViewWidget::expandItem(const NSItem& item) {
  if (items_->expand(item)) expand(items_->indexOf(item));
}

void OutlineViewWidget::collapseItem(const NSItem& item) {
  if (!items_->isExpanded(item)) return;
  const QModelIndex collapsed = items_->indexOf(item);
  const auto isBelow = [&collapsed](QModelIndex index) {
    while (index.isValid() && index != collapsed)
      index = index.parent();
    return index.isValid();
  };
  for (const QModelIndex& selected : selectionModel()->selectedIndexes()) {
    if (selected != collapsed && isBelow(selected)) selectionModel()->select(selected, QItemSelectionModel::Deselect);
  }
  if (isBelow(currentIndex())) selectionModel()->setCurrentIndex(collapsed, QItemSelectionModel::NoUpdate);
  items_->collapse(item);
  collapse(collapsed);
}

std::vector<int> OutlineViewWidget::selectedRows() const {
  std::vector<int> rows;
  for (const QModelIndex& index : selectionModel()->selectedIndexes()) {
    if (const int row = items_->rowForItem(items_->itemAt(index)); row >= 0) rows.push_back(row);
  }
  std::sort(rows.begin(), rows.end());
  return rows;
}

void OutlineViewWidget::selectRows(const std::vector<int>& rows) {
  QItemSelection selection;
  for (const int row : rows) {
    if (const QModelIndex index = items_->indexOf(items_->itemAtRow(row)); index.isValid()) {
      selection.append(QItemSelectionRange(index));
    }
  }
  selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

QRect OutlineViewWidget::visualRect(const QModelIndex& index) const {
  QRect rect = QTreeView::visualRect(index);
  const bool isRoot = index.isValid() && !index.parent().isValid() && index.row() == 0;
  if (isRoot && rect.isValid()) rect.setLeft(rect.left() - levelWidth);
  return rect;
}

QRect OutlineViewWidget::triangleRect(const QModelIndex& index) const {
  const QRect rect = visualRect(index);
  if (!rect.isValid() || !items_->hasTriangle(index)) return {};
  return {rect.left() - levelWidth, rect.top(), levelWidth, rect.height()};
}

bool OutlineViewWidget::isSelected(const QModelIndex& index) const {
  return selectionModel()->isSelected(index);
}

// ---- by the user

void OutlineViewWidget::mousePressEvent(QMouseEvent* event) {
  const QPoint position = event->position().toPoint();
  const QModelIndex index = indexAt(position);
  if (event->button() != Qt::LeftButton || !index.isValid()) return;
  const NSItem item = items_->itemAt(index);
  if (triangleRect(index).contains(position)) {
    toggleByUser(item);
  } else {
    selectByUser(item, event->modifiers());
  }
}

void OutlineViewWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  // The first press has selected; a triangle opens and closes as often as it is pressed.
  const QPoint position = event->position().toPoint();
  const QModelIndex index = indexAt(position);
  if (event->button() == Qt::LeftButton && index.isValid() && triangleRect(index).contains(position)) {
    toggleByUser(items_->itemAt(index));
  }
}

void OutlineViewWidget::mouseMoveEvent(QMouseEvent*) {}

void OutlineViewWidget::mouseReleaseEvent(QMouseEvent*) {}

void OutlineViewWidget::toggleByUser(const NSItem& item) {
  if (items_->isExpanded(item)) {
    collapseItem(item);
  } else {
    expandByUser(item);
  }
}

void OutlineViewWidget::expandByUser(const NSItem& item) {
  if (client_ && client_->shouldExpand(item)) expandItem(item);
}

void OutlineViewWidget::selectByUser(const NSItem& item, Qt::KeyboardModifiers modifiers) {
  const bool toggles = modifiers.testFlag(Qt::ControlModifier);
  if (toggles && isSelected(items_->indexOf(item))) {
    selectionModel()->select(items_->indexOf(item), QItemSelectionModel::Deselect);
    return;
  }
  if (client_ && !client_->shouldSelect(item)) return;
  // The client may have changed the rows.
  const QModelIndex index = items_->indexOf(item);
  if (items_->rowForItem(item) < 0) return;
  selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
  if (modifiers.testFlag(Qt::ShiftModifier) && items_->rowForItem(anchor_.lock()) >= 0) {
    selectRange(anchor_.lock(), item);
    return;
  }
  anchor_ = item;
  selectionModel()->select(index, toggles ? QItemSelectionModel::Select : QItemSelectionModel::ClearAndSelect);
}

void OutlineViewWidget::selectRange(const NSItem& from, const NSItem& to) {
  const auto [first, last] = std::minmax({items_->rowForItem(from), items_->rowForItem(to)});
  std::vector<int> rows;
  for (int row = first; row <= last; ++row)
    rows.push_back(row);
  selectRows(rows);
}

void OutlineViewWidget::keyPressEvent(QKeyEvent* event) {
  const int inSight = viewport()->height() / NSOutlineView::rowHeight;
  const int row = rowForKey(event->key(), currentRow(), items_->shownRowCount(), inSight);
  if (row >= 0) {
    moveByUser(row, event->modifiers());
  } else if (event->key() == Qt::Key_Right || event->key() == Qt::Key_Left) {
    moveSideways(event->key() == Qt::Key_Right, event->modifiers());
  } else {
    event->ignore();
  }
}

void OutlineViewWidget::moveByUser(int row, Qt::KeyboardModifiers modifiers) {
  const NSItem item = items_->itemAtRow(row);
  if (!item || (row == currentRow() && isSelected(currentIndex()))) return;
  selectByUser(item, modifiers & Qt::ShiftModifier);
  if (currentRow() >= 0) scrollTo(currentIndex());
}

void OutlineViewWidget::moveSideways(bool forward, Qt::KeyboardModifiers modifiers) {
  const QModelIndex current = currentIndex();
  const NSItem item = items_->itemAt(current);
  if (!item) return;
  const bool expanded = items_->isExpanded(item);
  if (forward && items_->isExpandable(current) && !expanded) return expandByUser(item);
  if (!forward && expanded && items_->hasTriangle(current)) return collapseItem(item);
  if (forward && expanded && items_->rowCount(current) > 0) return moveByUser(currentRow() + 1, modifiers);
  if (!forward && current.parent().isValid()) {
    moveByUser(items_->rowForItem(items_->itemAt(current.parent())), modifiers);
  }
}

int OutlineViewWidget::currentRow() const {
  return items_->rowForItem(items_->itemAt(currentIndex()));
}

// ---- on the screen

std::string OutlineViewWidget::toolTipAt(const QPoint& position) const {
  const QModelIndex index = indexAt(position);
  return index.isValid() ? items_->cellAt(index).toolTip : std::string();
}

void OutlineViewWidget::paintEvent(QPaintEvent* event) {
  QTreeView::paintEvent(event);
  if (placeholder().isEmpty() || !items_->isRootEmpty()) return;
  const NSItem lastItem = items_->itemAtRow(items_->shownRowCount() - 1);
  QPainter painter(viewport());
  paintPlaceholder(painter, *viewport(), lastItem ? visualRect(items_->indexOf(lastItem)).bottom() : 0, placeholder());
}

void OutlineViewWidget::drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const QRect row(0, option.rect.y(), viewport()->width(), option.rect.height());
  const bool hovered = option.state.testFlag(QStyle::State_MouseOver);
  const bool selected = isSelected(index);
  const bool active = isActiveWindow() && hasFocus();
  const QColor ink = palette().color(active ? QPalette::Active : QPalette::Inactive,
                                     selected ? QPalette::HighlightedText : QPalette::Text);
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  paintBackground(*painter, row, index, hovered);
  painter->setPen(ink);
  if (const QRect triangle = triangleRect(index); triangle.isValid()) {
    paintTriangle(*painter, triangle, items_->isExpanded(items_->itemAt(index)));
  }

  const NSOutlineCell& cell = items_->cellAt(index);
  QRect area = visualRect(index).adjusted(padding, 0, -padding - 2, 0);
  if (!cell.image.isNone()) {
    const QRect image(area.x(), area.y() + (area.height() - imageSize) / 2, imageSize, imageSize);
    imageIcon(cell.image).paint(painter, image, Qt::AlignCenter, selected ? QIcon::Selected : QIcon::Normal);
    area.setLeft(image.right() + 1 + imageGap);
  }
  const QFont font = fontOf(index);
  painter->setFont(font);
  painter->drawText(area, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                    elidedLine(cell.text, QFontMetrics(font), area.width()));
  painter->restore();
}

QFont OutlineViewWidget::fontOf(const QModelIndex& index) const {
  QFont result = font();
  if (!index.parent().isValid()) result.setWeight(QFont::DemiBold);
  return result;
}

void OutlineViewWidget::paintBackground(QPainter& painter, const QRect& row, const QModelIndex& index,
                                        bool hovered) const {
  const bool active = isActiveWindow() && hasFocus();
  const QRectF pill = QRectF(row).adjusted(1.5, 1.5, -1.5, -1.5);
  QColor fill = palette().color(active ? QPalette::Active : QPalette::Inactive, QPalette::Highlight);
  painter.setPen(Qt::NoPen);
  if (!isSelected(index)) fill.setAlpha(hovered ? 36 : 0);
  painter.setBrush(fill);
  painter.drawRoundedRect(pill, 5, 5);
  if (active && index == currentIndex() && selectionModel()->selectedIndexes().size() != 1) {
    painter.setPen(QPen(palette().color(isSelected(index) ? QPalette::HighlightedText : QPalette::Highlight), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(pill, 5, 5);
  }
}

void OutlineViewWidget::paintTriangle(QPainter& painter, const QRect& area, bool expanded) const {
  const QPointF centre = QRectF(area).center();
  QPainterPath path;
  if (expanded) {
    path.moveTo(centre + QPointF(-4, -2));
    path.lineTo(centre + QPointF(0, 2));
    path.lineTo(centre + QPointF(4, -2));
  } else {
    path.moveTo(centre + QPointF(-2, -4));
    path.lineTo(centre + QPointF(2, 0));
    path.lineTo(centre + QPointF(-2, 4));
  }
  painter.strokePath(path, QPen(painter.pen().color(), 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

}  // namespace tarn
