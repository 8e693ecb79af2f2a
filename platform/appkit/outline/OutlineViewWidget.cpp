#include "platform/appkit/outline/OutlineViewWidget.h"

#include "platform/appkit/ImageIcon.h"
#include "platform/appkit/ToolTips.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/table/CellText.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

#include <algorithm>

namespace tarn {
namespace {

constexpr int levelWidth = 16;
constexpr int imageSize = 16;
constexpr int padding = 6;
constexpr int imageGap = 6;

}  // namespace

OutlineViewWidget::OutlineViewWidget(QWidget* parent) : QTreeView(parent), items_(std::make_unique<OutlineModel>()) {
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

void OutlineViewWidget::setPlaceholder(const QString& text) {
  placeholder_ = text;
  viewport()->update();
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

// ---- by hand

void OutlineViewWidget::mousePressEvent(QMouseEvent* event) {
  const QPoint position = event->position().toPoint();
  const QModelIndex index = indexAt(position);
  if (event->button() != Qt::LeftButton || !index.isValid()) return;
  const NSItem item = items_->itemAt(index);
  if (triangleRect(index).contains(position)) {
    toggleByHand(item);
  } else {
    selectByHand(item, event->modifiers());
  }
}

void OutlineViewWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  // The first press has selected; a triangle opens and closes as often as it is pressed.
  const QPoint position = event->position().toPoint();
  const QModelIndex index = indexAt(position);
  if (event->button() == Qt::LeftButton && index.isValid() && triangleRect(index).contains(position)) {
    toggleByHand(items_->itemAt(index));
  }
}

void OutlineViewWidget::mouseMoveEvent(QMouseEvent*) {}

void OutlineViewWidget::mouseReleaseEvent(QMouseEvent*) {}

void OutlineViewWidget::toggleByHand(const NSItem& item) {
  if (items_->isExpanded(item)) {
    collapseItem(item);
  } else {
    expandByHand(item);
  }
}

void OutlineViewWidget::expandByHand(const NSItem& item) {
  if (client_ && client_->shouldExpand(item)) expandItem(item);
}

void OutlineViewWidget::selectByHand(const NSItem& item, Qt::KeyboardModifiers modifiers) {
  const bool toggles = modifiers.testFlag(Qt::ControlModifier);
  if (toggles && isSelected(items_->indexOf(item))) {
    selectionModel()->select(items_->indexOf(item), QItemSelectionModel::Deselect);
    return;
  }
  if (client_ && !client_->shouldSelect(item)) return;
  // Whoever was asked may have changed the rows.
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
  const int last = items_->shownRowCount() - 1;
  const int row = currentRow();
  const int page = std::max(1, viewport()->height() / std::max(1, sizeHintForRow(0)) - 1);
  switch (event->key()) {
    case Qt::Key_Up:
      return moveByHand(row < 0 ? last : std::max(0, row - 1), event->modifiers());
    case Qt::Key_Down:
      return moveByHand(std::min(last, row + 1), event->modifiers());
    case Qt::Key_PageUp:
      return moveByHand(std::max(0, row - page), event->modifiers());
    case Qt::Key_PageDown:
      return moveByHand(std::min(last, row + page), event->modifiers());
    case Qt::Key_Home:
      return moveByHand(0, event->modifiers());
    case Qt::Key_End:
      return moveByHand(last, event->modifiers());
    case Qt::Key_Right:
      return moveSideways(true, event->modifiers());
    case Qt::Key_Left:
      return moveSideways(false, event->modifiers());
    default:
      event->ignore();
  }
}

void OutlineViewWidget::moveByHand(int row, Qt::KeyboardModifiers modifiers) {
  const NSItem item = items_->itemAtRow(row);
  if (!item || (row == currentRow() && isSelected(currentIndex()))) return;
  selectByHand(item, modifiers & Qt::ShiftModifier);
  if (currentRow() >= 0) scrollTo(currentIndex());
}

void OutlineViewWidget::moveSideways(bool forward, Qt::KeyboardModifiers modifiers) {
  const QModelIndex current = currentIndex();
  const NSItem item = items_->itemAt(current);
  if (!item) return;
  const bool expanded = items_->isExpanded(item);
  if (forward && items_->isExpandable(current) && !expanded) return expandByHand(item);
  if (!forward && expanded && items_->hasTriangle(current)) return collapseItem(item);
  if (forward && expanded && items_->rowCount(current) > 0) return moveByHand(currentRow() + 1, modifiers);
  if (!forward && current.parent().isValid()) {
    moveByHand(items_->rowForItem(items_->itemAt(current.parent())), modifiers);
  }
}

int OutlineViewWidget::currentRow() const {
  return items_->rowForItem(items_->itemAt(currentIndex()));
}

void OutlineViewWidget::contextMenuEvent(QContextMenuEvent* event) {
  QPoint position = event->globalPos();
  if (event->reason() == QContextMenuEvent::Keyboard) {
    const QRect row = visualRect(currentIndex());
    position = viewport()->mapToGlobal(viewport()->rect().intersects(row) ? row.bottomLeft() : QPoint());
  }
  if (client_) client_->menuRequested(position);
}

void OutlineViewWidget::focusInEvent(QFocusEvent* event) {
  QTreeView::focusInEvent(event);
  viewport()->update();
}

void OutlineViewWidget::focusOutEvent(QFocusEvent* event) {
  QTreeView::focusOutEvent(event);
  viewport()->update();
}

// ---- on the screen

bool OutlineViewWidget::viewportEvent(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QTreeView::viewportEvent(event);
  const auto& help = static_cast<QHelpEvent&>(*event);
  const QModelIndex index = indexAt(help.pos());
  const std::string_view text = index.isValid() ? std::string_view(items_->cellAt(index).toolTip) : std::string_view();
  if (text.empty()) {
    QToolTip::hideText();
  } else {
    showPlainToolTip(help.globalPos(), toQString(text), viewport());
  }
  return true;
}

void OutlineViewWidget::paintEvent(QPaintEvent* event) {
  QTreeView::paintEvent(event);
  if (placeholder_.isEmpty() || !items_->isRootEmpty()) return;
  const NSItem lastItem = items_->itemAtRow(items_->shownRowCount() - 1);
  const int top = lastItem ? visualRect(items_->indexOf(lastItem)).bottom() : 0;
  QPainter painter(viewport());
  painter.setPen(palette().color(QPalette::PlaceholderText));
  painter.drawText(viewport()->rect().adjusted(16, top + 16, -16, -8),
                   Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, placeholder_);
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
  QRect place = visualRect(index).adjusted(padding, 0, -padding - 2, 0);
  if (!cell.image.isNone()) {
    const QRect image(place.x(), place.y() + (place.height() - imageSize) / 2, imageSize, imageSize);
    imageIcon(cell.image).paint(painter, image, Qt::AlignCenter, selected ? QIcon::Selected : QIcon::Normal);
    place.setLeft(image.right() + 1 + imageGap);
  }
  const QFont font = fontOf(index);
  painter->setFont(font);
  painter->drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                    elidedLine(cell.text, QFontMetrics(font), place.width()));
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

void OutlineViewWidget::paintTriangle(QPainter& painter, const QRect& place, bool expanded) const {
  const QPointF centre = QRectF(place).center();
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
