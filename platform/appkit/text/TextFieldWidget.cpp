#include "platform/appkit/text/TextFieldWidget.h"

#include "platform/appkit/FocusChange.h"
#include "platform/appkit/Utf8.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPointer>
#include <QStyleOptionFrame>

#include <cmath>

namespace tarn {

namespace {

constexpr int fieldMargin = 2;
// As many characters as a field is wide when its layout leaves it alone.
constexpr int usualColumns = 17;

}  // namespace

TextFieldWidget::TextFieldWidget(QWidget* parent) : TextInputWidget(TextStore::Lines::one, parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void TextFieldWidget::setCellEditor(bool isCellEditor) {
  cellEditor_ = isCellEditor;
  showCaret();
  update();
}

void TextFieldWidget::setSecure(bool secure) {
  secure_ = secure;
  const Qt::InputMethodHints hidden =
      Qt::ImhHiddenText | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase | Qt::ImhSensitiveData;
  setInputMethodHints(secure ? hidden : Qt::InputMethodHints());
  update();
}

QStyleOptionFrame TextFieldWidget::frameOption() const {
  QStyleOptionFrame option;
  option.initFrom(this);
  option.lineWidth = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, this);
  return option;
}

QSize TextFieldWidget::sizeHint() const {
  const QStyleOptionFrame option = frameOption();
  const QSize text(fontMetrics().horizontalAdvance(u'x') * usualColumns, BlockLayout::rowHeight(font()));
  return style()->sizeFromContents(QStyle::CT_LineEdit, &option, text + QSize(2 * fieldMargin, fieldMargin), this);
}

QSize TextFieldWidget::minimumSizeHint() const {
  return {fontMetrics().horizontalAdvance(u'x') * 3 + 4 * fieldMargin, sizeHint().height()};
}

QRect TextFieldWidget::contents() const {
  QRect rect = this->rect();
  if (!cellEditor_) {
    const QStyleOptionFrame option = frameOption();
    rect = style()->subElementRect(QStyle::SE_LineEditContents, &option, this);
  }
  const int height = BlockLayout::rowHeight(font());
  return {rect.x() + fieldMargin, rect.y() + (rect.height() - height) / 2, std::max(1, rect.width() - 2 * fieldMargin),
          height};
}

bool TextFieldWidget::mayChange(std::size_t position, std::size_t length, const QString& replacement) {
  const NSFormatter* formatter = formatter_ ? formatter_() : nullptr;
  // The text may be a value of many megabytes: it is put together for a formatter only.
  if (!formatter) return true;
  QString wouldBe = text();
  return formatter->isPartialStringValid(toUtf8(wouldBe.replace(qsizetype(position), qsizetype(length), replacement)));
}

void TextFieldWidget::textChanged(std::size_t, std::size_t, std::size_t) {}

void TextFieldWidget::textSet(std::size_t) {
  showCaret();
}

void TextFieldWidget::editingLeft() {
  end(End::focus);
}

void TextFieldWidget::end(End how) {
  const QPointer<TextFieldWidget> self(this);
  commitEditing();
  if (!self) return;
  emit finished(how);
  if (self && how == End::enter) emit returnPressed();
}

bool TextFieldWidget::event(QEvent* event) {
  // Before the toolkit takes Tab for a step to the next control.
  if (cellEditor_ && event->type() == QEvent::KeyPress) {
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab) {
      key->accept();
      const bool back = key->key() == Qt::Key_Backtab || (key->modifiers() & Qt::ShiftModifier);
      end(back ? End::backtab : End::tab);
      return true;
    }
  }
  if (cellEditor_ && event->type() == QEvent::ShortcutOverride &&
      static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
    event->accept();
    return true;
  }
  return TextInputWidget::event(event);
}

void TextFieldWidget::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    event->accept();
    end(End::enter);
  } else if (cellEditor_ && event->key() == Qt::Key_Escape) {
    event->accept();
    end(End::escape);
  } else {
    TextInputWidget::keyPressEvent(event);
  }
}

void TextFieldWidget::focusInEvent(QFocusEvent* event) {
  TextInputWidget::focusInEvent(event);
  const Qt::FocusReason reason = event->reason();
  if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason)
    selectAll();
}

void TextFieldWidget::focusOutEvent(QFocusEvent* event) {
  const QPointer<TextFieldWidget> self(this);
  // What is selected in a field without the keyboard looks as if the next key replaced it.
  if (!leavesForMoment(*event)) setSelection(caret(), caret());
  TextInputWidget::focusOutEvent(event);
  if (self) showCaret();
}

void TextFieldWidget::resizeEvent(QResizeEvent* event) {
  TextInputWidget::resizeEvent(event);
  showCaret();
}

TextStore::Block TextFieldWidget::leftBlock() const {
  return store().blockAt(leftBlock_);
}

double TextFieldWidget::widthOf(const TextStore::Block& block) const {
  return layoutBlock(block, {})->width();
}

std::size_t TextFieldWidget::rowEdge(bool atEnd) const {
  return atEnd ? store().length() : 0;
}

std::size_t TextFieldWidget::positionAt(const QPoint& point) const {
  double x = point.x() - contents().x() + offset_;
  TextStore::Block block = leftBlock();
  for (double width = widthOf(block); x > width && store().hasNext(block); width = widthOf(block)) {
    x -= width;
    block = store().next(block);
  }
  return block.start + std::size_t(layoutBlock(block, {})->positionAt(0, x));
}

QRect TextFieldWidget::caretRect(std::size_t position) const {
  const QRect area = contents();
  double x = area.x() - offset_;
  TextStore::Block block = leftBlock();
  const TextStore::Block at = store().blockAt(position);
  while (block.start < at.start && x < area.right()) {
    x += widthOf(block);
    block = store().next(block);
  }
  if (block.start != at.start) return {area.right(), area.y(), 1, area.height()};
  x += caretX(*layoutBlock(block, {}), block, position);
  const int width = style()->pixelMetric(QStyle::PM_TextCursorWidth, nullptr, this);
  return {std::min(int(std::lround(x)), area.right()), area.y() + 1, width, area.height() - 2};
}

void TextFieldWidget::setLeft(TextStore::Block block, double offset) {
  while (offset < 0 && store().hasPrevious(block)) {
    block = store().previous(block);
    offset += widthOf(block);
  }
  for (double width = widthOf(block); offset > width && store().hasNext(block); width = widthOf(block)) {
    offset -= width;
    block = store().next(block);
  }
  leftBlock_ = block.start;
  offset_ = std::max(0.0, offset);
}

void TextFieldWidget::showCaret() {
  // A field that isn't edited shows the beginning of its text.
  if (!hasFocus()) {
    leftBlock_ = 0;
    offset_ = 0;
    return;
  }
  const double width = contents().width() - 1;
  TextStore::Block left = leftBlock();
  const TextStore::Block at = store().blockAt(caret());
  const double caretInBlock = caretX(*layoutBlock(at, {}), at, caret());
  if (at.start < left.start) return setLeft(at, caretInBlock);
  double x = -offset_;
  TextStore::Block block = left;
  while (block.start < at.start && x < 2 * width) {
    x += widthOf(block);
    block = store().next(block);
  }
  if (block.start < at.start) return setLeft(at, caretInBlock - width);
  x += caretInBlock;
  if (x < 0) return setLeft(at, caretInBlock);
  if (x > width) return setLeft(at, caretInBlock - width);

  // No empty space behind the text's end while there is text left of the field.
  x = -offset_;
  block = left;
  while (store().hasNext(block) && x <= width) {
    x += widthOf(block);
    block = store().next(block);
  }
  const double end = x + widthOf(block);
  setLeft(left, !store().hasNext(block) && end < width ? offset_ + end - width : offset_);
}

void TextFieldWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  if (cellEditor_) {
    painter.fillRect(rect(), palette().base());
  } else {
    QStyleOptionFrame option = frameOption();
    option.state |= QStyle::State_Sunken;
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
  }
  const QRect area = contents();
  painter.setClipRect(area.adjusted(-fieldMargin, 0, fieldMargin, 0));
  drawPlaceholder(painter, area.adjusted(0, 1, 0, 0), false);
  double x = area.x() - offset_;
  for (TextStore::Block block = leftBlock();; block = store().next(block)) {
    const auto layout = layoutBlock(block, {});
    drawBlock(painter, QPointF(x, area.y()), *layout, block);
    x += layout->width();
    if (x > area.right() || !store().hasNext(block)) break;
  }
  drawCaret(painter);
}

}  // namespace tarn
