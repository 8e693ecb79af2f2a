#include "platform/appkit/TextViewWidget.h"

#include "platform/appkit/TextMovement.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyle>
#include <QWheelEvent>

#include <cmath>
#include <limits>

namespace tarn {

namespace {

constexpr int margin = 4;
constexpr double rowsAWheelStep = 3;
constexpr double angleAWheelStep = 120;

int clampedInt(std::size_t value) {
  return int(std::min<std::size_t>(value, std::size_t(std::numeric_limits<int>::max())));
}

}  // namespace

TextViewWidget::TextViewWidget(QWidget* parent)
    : TextInputWidget(TextStore::Lines::many, parent), scrollBar_(new QScrollBar(Qt::Vertical, this)) {
  setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  scrollBar_->setCursor(Qt::ArrowCursor);
  scrollBar_->setFocusPolicy(Qt::NoFocus);
  connect(scrollBar_, &QScrollBar::valueChanged, this, &TextViewWidget::scrollBarMoved);
}

QSize TextViewWidget::sizeHint() const {
  return {256, 192};
}

QSize TextViewWidget::minimumSizeHint() const {
  return {80, rowHeight() + 2 * (margin + frameWidth())};
}

QRect TextViewWidget::contents() const {
  // Room for the scroll bar is kept also while there is none, so that its coming wraps nothing anew.
  const int bar = scrollBar_->sizeHint().width();
  const QRect rect = contentsRect().adjusted(margin, margin, -margin - bar, -margin);
  return {rect.topLeft(), QSize(std::max(1, rect.width()), std::max(1, rect.height()))};
}

int TextViewWidget::rowHeight() const {
  return BlockLayout::rowHeight(font());
}

int TextViewWidget::rowsInSight() const {
  return std::max(1, contents().height() / rowHeight());
}

std::shared_ptr<const BlockLayout> TextViewWidget::layoutOf(const TextStore::Block& block) const {
  return layoutBlock(block, double(contents().width()));
}

std::size_t TextViewWidget::startOf(const Row& row) const {
  return row.block.start + std::size_t(layoutOf(row.block)->rowStart(row.row));
}

TextViewWidget::Row TextViewWidget::rowOf(std::size_t position) const {
  const TextStore::Block block = store().blockAt(position);
  const std::size_t offset = std::min(position, block.contentEnd()) - block.start;
  return {block, layoutOf(block)->rowAt(int(offset))};
}

TextViewWidget::Row TextViewWidget::moved(Row row, std::ptrdiff_t rows) const {
  std::ptrdiff_t to = row.row + rows;
  while (to < 0 && store().hasPrevious(row.block)) {
    row.block = store().previous(row.block);
    to += layoutOf(row.block)->rows();
  }
  std::ptrdiff_t count = layoutOf(row.block)->rows();
  while (to >= count && store().hasNext(row.block)) {
    to -= count;
    row.block = store().next(row.block);
    count = layoutOf(row.block)->rows();
  }
  row.row = int(std::clamp<std::ptrdiff_t>(to, 0, count - 1));
  return row;
}

std::size_t TextViewWidget::lastPositionIn(const Row& row, std::size_t position) const {
  const std::size_t end = row.block.start + std::size_t(layoutOf(row.block)->rowEnd(row.row));
  if (position < end && position < row.block.contentEnd()) return position;
  // At its very end a wrapped row's caret would show in the next one.
  const bool goesOn =
      row.row + 1 < layoutOf(row.block)->rows() || (row.block.ending == 0 && store().hasNext(row.block));
  if (goesOn) return std::max(previousCharacter(store(), std::min(position, end)), startOf(row));
  return std::min(position, row.block.contentEnd());
}

std::size_t TextViewWidget::positionIn(const Row& row, double x) const {
  return lastPositionIn(row, row.block.start + std::size_t(layoutOf(row.block)->positionAt(row.row, x)));
}

std::size_t TextViewWidget::positionAt(const QPoint& point) const {
  const QRect area = contents();
  const int rows = int(std::floor(double(point.y() - area.y()) / rowHeight()));
  const Row top = rowOf(top_);
  const Row row = moved(top, rows);
  return positionIn(row, point.x() - area.x());
}

std::size_t TextViewWidget::rowEdge(bool atEnd) const {
  const Row row = rowOf(caret());
  return atEnd ? lastPositionIn(row, row.block.end()) : startOf(row);
}

QRect TextViewWidget::caretRect() const {
  const QRect area = contents();
  const Row at = rowOf(caret());
  const int width = style()->pixelMetric(QStyle::PM_TextCursorWidth, nullptr, this);
  Row row = rowOf(top_);
  int y = area.y() - row.row * rowHeight();
  TextStore::Block block = row.block;
  while (block.start < at.block.start && y <= area.bottom()) {
    y += layoutOf(block)->rows() * rowHeight();
    block = store().next(block);
  }
  if (block.start != at.block.start)
    return {area.x(), at.block.start < block.start ? -rowHeight() : height(), width, 1};
  const double x = area.x() + caretX(*layoutOf(block), block);
  return {std::min(int(std::lround(x)), area.right() + margin), y + at.row * rowHeight(), width, rowHeight()};
}

void TextViewWidget::showCaret() {
  scrollToPosition(caret());
}

void TextViewWidget::scrollToPosition(std::size_t position) {
  const Row row = rowOf(position);
  const std::size_t start = startOf(row);
  if (start < startOf(rowOf(top_))) return setTop(row);
  const Row highestTop = moved(row, 1 - rowsInSight());
  if (startOf(highestTop) > top_) return setTop(highestTop);
  settle();
}

void TextViewWidget::setTop(Row row) {
  const Row last = moved(rowOf(store().length()), 1 - rowsInSight());
  top_ = std::min(startOf(row), startOf(last));
  settle();
  update();
}

void TextViewWidget::scrollBarMoved(int value) {
  if (value >= scrollBar_->maximum()) return setTop(rowOf(store().length()));
  std::size_t row = std::size_t(std::max(value, 0));
  const TextStore::Block block = store().blockAtRow(row);
  setTop({block, std::min(int(row), layoutOf(block)->rows() - 1)});
}

void TextViewWidget::settle() {
  if (!isVisible()) return;
  // Below the top: as many blocks as are in sight.
  const Row top = rowOf(top_);
  int rows = -top.row;
  for (TextStore::Block block = top.block;; block = store().next(block)) {
    const int count = layoutOf(block)->rows();
    store().setRows(block, std::size_t(count));
    rows += count;
    if (rows > rowsInSight() || !store().hasNext(block)) break;
  }
  const QSignalBlocker blocker(scrollBar_);
  const int total = clampedInt(store().rows());
  scrollBar_->setRange(0, std::max(0, total - rowsInSight()));
  scrollBar_->setPageStep(rowsInSight());
  scrollBar_->setValue(clampedInt(store().rowsBefore(top.block) + std::size_t(top.row)));
  scrollBar_->setVisible(scrollBar_->maximum() > 0);
}

void TextViewWidget::showEvent(QShowEvent* event) {
  TextInputWidget::showEvent(event);
  settle();
}

void TextViewWidget::resizeEvent(QResizeEvent* event) {
  TextInputWidget::resizeEvent(event);
  const QRect inner = contentsRect();
  const int bar = scrollBar_->sizeHint().width();
  scrollBar_->setGeometry(inner.right() + 1 - bar, inner.top(), bar, inner.height());
  updateColumns();
  setTop(rowOf(top_));
}

void TextViewWidget::updateColumns() {
  const double column = QFontMetricsF(font()).averageCharWidth();
  const auto columns = std::size_t(std::max(1.0, contents().width() / std::max(1.0, column)));
  if (columns != store().columns()) store().setColumns(columns);
}

void TextViewWidget::changeEvent(QEvent* event) {
  TextInputWidget::changeEvent(event);
  if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
  updateColumns();
  settle();
}

void TextViewWidget::wheelEvent(QWheelEvent* event) {
  if (event->modifiers() & Qt::ControlModifier) return event->ignore();
  const double step = event->pixelDelta().isNull() ? event->angleDelta().y() / angleAWheelStep * rowsAWheelStep
                                                   : double(event->pixelDelta().y()) / rowHeight();
  wheelRest_ += step;
  const double rows = std::trunc(wheelRest_);
  wheelRest_ -= rows;
  if (rows != 0) setTop(moved(rowOf(top_), -std::ptrdiff_t(rows)));
  event->accept();
}

bool TextViewWidget::mayChange(std::size_t position, std::size_t length, const QString& replacement) {
  // A copy, since it may take the view away.
  const ShouldChange ask = shouldChange_;
  return !ask || ask(position, length, replacement);
}

void TextViewWidget::textChanged(std::size_t position, std::size_t removed, std::size_t inserted) {
  // The same text stays at the top.
  if (top_ >= position + removed) {
    top_ = top_ - removed + inserted;
  } else if (top_ > position) {
    top_ = position;
  }
}

void TextViewWidget::textSet(bool onlyAppended) {
  if (!onlyAppended) top_ = 0;
  settle();
}

void TextViewWidget::moveVertically(std::ptrdiff_t rows, bool select) {
  const Row from = rowOf(caret());
  if (goalCaret_ != caret()) goalX_ = caretX(*layoutOf(from.block), from.block);
  const Row to = moved(from, rows);
  const bool stays = to.block.start == from.block.start && to.row == from.row;
  const std::size_t edge = rows < 0 ? 0 : store().length();
  const double goal = goalX_;
  moveCaret(stays ? edge : positionIn(to, goal), select);
  goalCaret_ = caret();
}

void TextViewWidget::keyPressEvent(QKeyEvent* event) {
  const std::ptrdiff_t page = std::max(1, rowsInSight() - 1);
  const bool select = event->modifiers() & Qt::ShiftModifier;
  const auto matches = [&](QKeySequence::StandardKey plain, QKeySequence::StandardKey selecting) {
    return event->matches(plain) || event->matches(selecting);
  };
  event->accept();
  if (matches(QKeySequence::MoveToPreviousLine, QKeySequence::SelectPreviousLine)) {
    moveVertically(-1, select);
  } else if (matches(QKeySequence::MoveToNextLine, QKeySequence::SelectNextLine)) {
    moveVertically(1, select);
  } else if (matches(QKeySequence::MoveToPreviousPage, QKeySequence::SelectPreviousPage)) {
    moveVertically(-page, select);
  } else if (matches(QKeySequence::MoveToNextPage, QKeySequence::SelectNextPage)) {
    moveVertically(page, select);
  } else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
             !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
    replaceByHand(selectionStart(), selectionEnd() - selectionStart(), QStringLiteral("\n"));
  } else if (event->key() == Qt::Key_Tab && event->modifiers() == Qt::NoModifier) {
    replaceByHand(selectionStart(), selectionEnd() - selectionStart(), QStringLiteral("\t"));
  } else {
    TextInputWidget::keyPressEvent(event);
  }
}

bool TextViewWidget::event(QEvent* event) {
  // Tab types; Ctrl+Tab and Shift+Tab leave the view.
  if (event->type() == QEvent::KeyPress) {
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Tab && key->modifiers() == Qt::NoModifier) {
      keyPressEvent(key);
      return true;
    }
    if (key->key() == Qt::Key_Tab && key->modifiers() == Qt::ControlModifier && focusNextPrevChild(true)) return true;
  }
  return TextInputWidget::event(event);
}

void TextViewWidget::paintEvent(QPaintEvent* event) {
  TextInputWidget::paintEvent(event);
  QPainter painter(this);
  const QRect area = contents();
  painter.fillRect(contentsRect(), palette().base());
  if (hasFocus()) {
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }
  painter.setClipRect(area.adjusted(-1, -1, margin, margin));
  drawPlaceholder(painter, area);
  const Row top = rowOf(top_);
  int y = area.y() - top.row * rowHeight();
  for (TextStore::Block block = top.block;; block = store().next(block)) {
    const auto layout = layoutOf(block);
    drawBlock(painter, QPointF(area.x(), y), *layout, block);
    y += layout->rows() * rowHeight();
    if (y > area.bottom() || !store().hasNext(block)) break;
  }
  drawCaret(painter);
}

}  // namespace tarn
