#include "platform/appkit/text/TextViewWidget.h"

#include "platform/appkit/text/TextMovement.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyle>
#include <QWheelEvent>

#include <cmath>
#include <cstdlib>
#include <limits>

namespace tarn {

namespace {

constexpr int margin = 4;
constexpr double rowsAWheelStep = 3;
constexpr double angleAWheelStep = 120;
// No row of visible text is longer. What takes no room, as combining marks do, could go on for ever.
constexpr std::size_t longestCarry = 4 * TextStore::longestBlock;

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

RowStarts::Start TextViewWidget::firstRow(const TextStore::Block& block) const {
  // How far back a jump into a long line looks for a start that is known. Farther than what is in sight, so that the
  // position up to which the rows are a guess isn't seen at once.
  constexpr int reach = 16;
  const auto startsLine = [&](const TextStore::Block& at) {
    return !store().hasPrevious(at) || store().previous(at).ending > 0;
  };
  if (startsLine(block)) return {block.start, true};
  if (const auto known = rowStarts_.start(block.start)) return *known;
  TextStore::Block from = block;
  for (int i = 0; i < reach && !startsLine(from) && !rowStarts_.start(from.start); ++i)
    from = store().previous(from);
  if (!startsLine(from) && !rowStarts_.start(from.start)) rowStarts_.guess(from.start);
  for (; from.start < block.start; from = store().next(from))
    spanOf(from);
  return rowStarts_.start(block.start).value_or(RowStarts::Start{block.start});
}

TextViewWidget::Span TextViewWidget::spanOf(const TextStore::Block& block) const {
  const double width = contents().width();
  const RowStarts::Start first = firstRow(block);
  Span span{block, block.end(), nullptr};
  span.block.start = first.position;
  span.block.length = block.end() - first.position;
  if (!goesOn(block)) {
    span.layout = layoutBlock(span.block, width);
    return span;
  }
  if (const auto next = rowStarts_.next(block.end(), first)) {
    span.end = next->position;
    const bool isOwn = next->carriedFrom == first.position;
    if (!isOwn) span.block.length = span.end - first.position;
    span.layout = layoutBlock(span.block, width, isOwn);
    return span;
  }
  span.layout = layoutBlock(span.block, width, true);
  span.end = first.position + std::size_t(span.layout->rowStart(span.layout->rows()));
  if (block.end() - span.end > longestCarry) {
    span.end = block.end();
    span.layout = layoutBlock(span.block, width);
    rowStarts_.set(block.end(), {span.end, first.isExact});
  } else {
    rowStarts_.set(block.end(), {span.end, first.isExact, first.position});
  }
  return span;
}

std::size_t TextViewWidget::startOf(const Row& row) const {
  const Span span = spanOf(row.block);
  return span.block.start + std::size_t(span.layout->rowStart(row.row));
}

TextViewWidget::Row TextViewWidget::rowOf(std::size_t position) const {
  TextStore::Block block = store().blockAt(position);
  Span span = spanOf(block);
  while (position >= span.end && goesOn(block)) {
    block = store().next(block);
    span = spanOf(block);
  }
  const std::size_t offset = std::min(position, block.contentEnd()) - span.block.start;
  return {block, span.layout->rowAt(int(offset))};
}

TextViewWidget::Row TextViewWidget::moved(Row row, std::ptrdiff_t rows) const {
  std::ptrdiff_t to = row.row + rows;
  while (to < 0 && store().hasPrevious(row.block)) {
    row.block = store().previous(row.block);
    to += rowsOf(row.block);
  }
  to = std::max<std::ptrdiff_t>(to, 0);
  std::ptrdiff_t count = rowsOf(row.block);
  while (to >= count && store().hasNext(row.block)) {
    to -= count;
    row.block = store().next(row.block);
    count = rowsOf(row.block);
  }
  row.row = int(std::min<std::ptrdiff_t>(to, count - 1));
  return row;
}

std::size_t TextViewWidget::lastPositionIn(const Row& row, std::size_t position) const {
  const Span span = spanOf(row.block);
  const std::size_t end = span.block.start + std::size_t(span.layout->rowEnd(row.row));
  if (position < end && position < row.block.contentEnd()) return position;
  // At its very end a wrapped row's caret would show in the next one.
  if (row.row + 1 < span.layout->rows() || goesOn(row.block))
    return std::max(previousCharacter(store(), std::min(position, end)), startOf(row));
  return std::min(position, row.block.contentEnd());
}

std::size_t TextViewWidget::positionIn(const Row& row, double x) const {
  const Span span = spanOf(row.block);
  return lastPositionIn(row, span.block.start + std::size_t(span.layout->positionAt(row.row, x)));
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

QRect TextViewWidget::caretRect(std::size_t position) const {
  const QRect area = contents();
  const Row at = rowOf(position);
  const int width = style()->pixelMetric(QStyle::PM_TextCursorWidth, nullptr, this);
  Row row = rowOf(top_);
  int y = area.y() - row.row * rowHeight();
  TextStore::Block block = row.block;
  while (block.start < at.block.start && y <= area.bottom()) {
    y += rowsOf(block) * rowHeight();
    block = store().next(block);
  }
  if (block.start != at.block.start)
    return {area.x(), at.block.start < block.start ? -rowHeight() : height(), width, 1};
  const Span span = spanOf(block);
  const double x = area.x() + caretX(*span.layout, span.block, position);
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
  // Rows that were never laid out are estimates: small steps don't go by them.
  const std::ptrdiff_t step = value - barValue_;
  if (std::abs(step) <= rowsInSight()) return setTop(moved(rowOf(top_), step));
  std::size_t row = std::size_t(std::max(value, 0));
  const TextStore::Block block = store().blockAtRow(row);
  setTop(moved({block, 0}, std::clamp<std::ptrdiff_t>(std::ptrdiff_t(row), 0, std::max(rowsOf(block) - 1, 0))));
}

void TextViewWidget::settle() {
  if (!isVisible()) return;
  // Below the top: as many blocks as are in sight.
  const Row top = rowOf(top_);
  int rows = -top.row;
  for (TextStore::Block block = top.block;; block = store().next(block)) {
    const int count = rowsOf(block);
    store().setRows(block, std::size_t(count));
    rows += count;
    rowStarts_.setShown(top.block.start, block.start);
    if (rows > rowsInSight() || !store().hasNext(block)) break;
  }
  const QSignalBlocker blocker(scrollBar_);
  const int total = clampedInt(store().rows());
  scrollBar_->setRange(0, std::max(0, total - rowsInSight()));
  scrollBar_->setPageStep(rowsInSight());
  scrollBar_->setValue(clampedInt(store().rowsBefore(top.block) + std::size_t(top.row)));
  scrollBar_->setVisible(scrollBar_->maximum() > 0);
  barValue_ = scrollBar_->value();
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
  rowStarts_.clear();
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
  rowStarts_.forgetFrom(position);
  // The same text stays at the top.
  if (top_ >= position + removed) {
    top_ = top_ - removed + inserted;
  } else if (top_ > position) {
    top_ = position;
  }
}

void TextViewWidget::textSet(std::size_t kept) {
  rowStarts_.forgetFrom(kept);
  if (kept == 0) top_ = 0;
  settle();
}

void TextViewWidget::composedChanged() {
  rowStarts_.forgetFrom(store().blockAt(caret()).start + 1);
}

void TextViewWidget::moveVertically(std::ptrdiff_t rows, bool select) {
  const Row from = rowOf(caret());
  if (goalCaret_ != caret()) {
    const Span span = spanOf(from.block);
    goalX_ = caretX(*span.layout, span.block, caret());
  }
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
    replaceByUser(selectionStart(), selectionEnd() - selectionStart(), QStringLiteral("\n"));
  } else if (event->key() == Qt::Key_Tab && event->modifiers() == Qt::NoModifier) {
    replaceByUser(selectionStart(), selectionEnd() - selectionStart(), QStringLiteral("\t"));
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
  drawPlaceholder(painter, area, true);
  const Row top = rowOf(top_);
  int y = area.y() - top.row * rowHeight();
  for (TextStore::Block block = top.block;; block = store().next(block)) {
    const Span span = spanOf(block);
    drawBlock(painter, QPointF(area.x(), y), *span.layout, span.block);
    y += span.layout->rows() * rowHeight();
    if (y > area.bottom() || !store().hasNext(block)) break;
  }
  drawCaret(painter);
}

}  // namespace tarn
