#include "platform/appkit/text/TextInputWidget.h"

#include "platform/appkit/FocusChange.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/AccessibleText.h"
#include "platform/appkit/text/TextMovement.h"

#include <QAccessible>
#include <QClipboard>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QInputMethod>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QStyle>
#include <QStyleHints>

namespace tarn {

TextInputWidget::TextInputWidget(TextStore::Lines lines, QWidget* parent) : QFrame(parent), store_(lines) {
  installAccessibleText();
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_InputMethodEnabled);
  setAttribute(Qt::WA_KeyCompression);
  setCursor(Qt::IBeamCursor);
  setAcceptDrops(true);
  setMouseTracking(false);
}

void TextInputWidget::setUtf8(std::string_view text) {
  stopComposing();
  const std::size_t before = store_.length();
  setByCode(store_.set(text) ? before : 0);
}

void TextInputWidget::appendUtf8(std::string_view text) {
  stopComposing();
  const std::size_t before = store_.length();
  store_.append(text);
  setByCode(before);
}

void TextInputWidget::setByCode(std::size_t kept) {
  history_.clear();
  edited_ = false;
  began_ = false;
  ++revision_;
  caret_ = anchor_ = store_.length();
  textSet(kept);
  announceCaret();
  update();
}

void TextInputWidget::setText(const QString& text) {
  setUtf8(toUtf8(text));
}

void TextInputWidget::commitEditing() {
  if (!began_) return;
  began_ = false;
  history_.closeStep();
  emit editingEnded();
}

void TextInputWidget::setSelection(std::size_t anchor, std::size_t caret) {
  history_.closeStep();
  anchor_ = std::min(anchor, store_.length());
  caret_ = std::min(caret, store_.length());
  restartBlinking();
  announceCaret();
  update();
}

void TextInputWidget::setPlaceholderText(const QString& text) {
  placeholder_ = text;
  update();
}

bool TextInputWidget::isAllowed(const TextChange& change) {
  const QPointer<TextInputWidget> self(this);
  const unsigned before = revision_;
  const bool allowed = mayChange(change.position, std::size_t(change.removed.size()), change.inserted);
  return self && allowed && revision_ == before;
}

void TextInputWidget::replaceByUser(std::size_t position, std::size_t length, const QString& replacement) {
  position = std::min(position, store_.length());
  TextChange change{position, store_.text(position, length), replacement};
  if (change.removed.isEmpty() && change.inserted.isEmpty()) return;
  if (!isAllowed(change)) return;
  history_.add(change);
  applyChange(change);
}

void TextInputWidget::applyChange(const TextChange& change) {
  const std::size_t removed = std::size_t(change.removed.size());
  const std::size_t inserted = std::size_t(change.inserted.size());
  store_.replace(change.position, removed, change.inserted);
  caret_ = anchor_ = change.position + inserted;
  ++revision_;
  edited_ = true;
  textChanged(change.position, removed, inserted);
  showCaret();
  restartBlinking();
  announceCaret();
  update();

  if (began_) return;
  began_ = true;
  emit editingBegan();
}

void TextInputWidget::undo() {
  if (!history_.canUndo()) return;
  const TextChange change = history_.undoing();
  if (!isAllowed(change)) return;
  history_.undone();
  applyChange(change);
}

void TextInputWidget::redo() {
  if (!history_.canRedo()) return;
  const TextChange change = history_.redoing();
  if (!isAllowed(change)) return;
  history_.redone();
  applyChange(change);
}

void TextInputWidget::cut() {
  if (!isReadable() || !hasSelection()) return;
  copy();
  replaceByUser(selectionStart(), selectionEnd() - selectionStart(), {});
}

void TextInputWidget::copy() {
  if (!isReadable() || !hasSelection()) return;
  QGuiApplication::clipboard()->setText(store_.text(selectionStart(), selectionEnd() - selectionStart()));
}

void TextInputWidget::paste() {
  insertMimeText(QGuiApplication::clipboard()->mimeData());
}

void TextInputWidget::selectAll() {
  setSelection(0, store_.length());
  publishPrimarySelection();
}

void TextInputWidget::publishPrimarySelection() const {
  if (!primarySelection() || !isReadable() || !hasSelection()) return;
  setPrimarySelection(store_.text(selectionStart(), selectionEnd() - selectionStart()));
}

const QMimeData* TextInputWidget::primarySelection() const {
  const QClipboard* clipboard = QGuiApplication::clipboard();
  return clipboard->supportsSelection() ? clipboard->mimeData(QClipboard::Selection) : nullptr;
}

void TextInputWidget::setPrimarySelection(const QString& text) const {
  QGuiApplication::clipboard()->setText(text, QClipboard::Selection);
}

void TextInputWidget::insertMimeText(const QMimeData* data) {
  if (!data || !data->hasText()) return;
  replaceByUser(selectionStart(), selectionEnd() - selectionStart(), data->text());
}

void TextInputWidget::focusInEvent(QFocusEvent* event) {
  QFrame::focusInEvent(event);
  restartBlinking();
  showCaret();
  update();
}

void TextInputWidget::focusOutEvent(QFocusEvent* event) {
  QFrame::focusOutEvent(event);
  blinking_.stop();
  caretOn_ = false;
  setComposed({});
  history_.closeStep();
  update();
  // After a moment the edit goes on.
  if (!leavesForMoment(*event)) editingLeft();
}

void TextInputWidget::moveCaret(std::size_t position, bool select) {
  const QPointer<TextInputWidget> self(this);
  if (!preedit_.isEmpty()) QGuiApplication::inputMethod()->commit();
  if (!self) return;
  setSelection(select ? anchor_ : position, position);
  showCaret();
}

void TextInputWidget::setComposed(const QString& text) {
  if (preedit_ == text) return;
  preedit_ = text;
  composedChanged();
}

void TextInputWidget::stopComposing() {
  if (preedit_.isEmpty()) return;
  setComposed({});
  QGuiApplication::inputMethod()->reset();
}

void TextInputWidget::announceCaret() {
  if (hasFocus()) updateMicroFocus();
  if (!QAccessible::isActive()) return;
  QAccessibleTextCursorEvent event(this, int(caret_));
  QAccessible::updateAccessibility(&event);
}

void TextInputWidget::restartBlinking() {
  if (!hasFocus()) return;
  caretOn_ = true;
  const int flashTime = QGuiApplication::styleHints()->cursorFlashTime();
  if (flashTime >= 2) blinking_.start(flashTime / 2, this);
}

std::shared_ptr<const BlockLayout> TextInputWidget::layoutBlock(const TextStore::Block& block,
                                                                std::optional<double> width, bool lastRowGoesOn) const {
  BlockLayout::Request request;
  const std::size_t content = block.length - block.ending;
  // A line's end shows unless it is the usual one.
  QString text = store_.text(block.start, block.length);
  const bool endsAsUsual = block.ending == 1 && text.back() == u'\n';
  text.truncate(qsizetype(content + (block.ending > 0 && !endsAsUsual ? 1 : 0)));
  if (isReadable()) {
    request.text = displayText(text, tabsShow());
    for (qsizetype i = 0; i < text.size(); ++i) {
      if (request.text[i] != text[i]) request.marks.append(int(i));
    }
  } else {
    request.text =
        QString(text.size(), QChar(style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter, nullptr, this)));
  }
  request.font = font();
  request.markColor = palette().color(QPalette::PlaceholderText);
  request.width = width;
  request.lastRowGoesOn = lastRowGoesOn;
  // A caret between two blocks is the later one's.
  const bool isLast = block.ending == 0 && block.end() == store_.length();
  const bool holdsCaret = caret_ >= block.start && (caret_ < block.end() || isLast) && caret_ <= block.contentEnd();
  if (!preedit_.isEmpty() && holdsCaret) {
    request.preedit = isReadable() ? displayText(preedit_, tabsShow()) : QString(preedit_.size(), QChar(u'●'));
    request.preeditPosition = int(std::min(caret_ - block.start, content));
  }
  return layouts_.layout(request);
}

double TextInputWidget::caretX(const BlockLayout& layout, const TextStore::Block& block, std::size_t position) const {
  return layout.xAt(int(std::min(position, block.contentEnd()) - block.start), preeditCaret_);
}

void TextInputWidget::drawBlock(QPainter& painter, const QPointF& top, const BlockLayout& layout,
                                const TextStore::Block& block) const {
  const std::size_t from = std::clamp(selectionStart(), block.start, block.contentEnd());
  const std::size_t to = std::clamp(selectionEnd(), block.start, block.contentEnd());
  const QPalette::ColorGroup group = isActiveWindow() ? QPalette::Active : QPalette::Inactive;
  painter.setPen(palette().color(isEnabled() ? group : QPalette::Disabled, QPalette::Text));
  // A line's end under the selection shows behind the line.
  if (block.ending > 0 && selectionStart() < block.end() && selectionEnd() >= block.end()) {
    const int row = layout.rows() - 1;
    const int height = BlockLayout::rowHeight(font());
    const double x = layout.xAt(int(block.contentEnd() - block.start), 0);
    painter.fillRect(QRectF(top.x() + x, top.y() + row * height, fontMetrics().horizontalAdvance(u' '), height),
                     palette().brush(group, QPalette::Highlight));
  }
  layout.draw(painter, top, int(from - block.start), int(to - block.start), palette(), group);
}

void TextInputWidget::drawCaret(QPainter& painter) const {
  const QColor color = palette().color(QPalette::Text);
  if (dropCaret_) {
    painter.fillRect(caretRect(std::min(*dropCaret_, store_.length())), color);
  } else if (caretOn_ && hasFocus()) {
    painter.fillRect(caretRect(caret_), color);
  }
}

void TextInputWidget::drawPlaceholder(QPainter& painter, const QRect& rect, bool wraps) const {
  if (store_.length() > 0 || !preedit_.isEmpty() || placeholder_.isEmpty()) return;
  painter.setPen(palette().color(QPalette::PlaceholderText));
  painter.drawText(rect, int(Qt::AlignLeft | Qt::AlignTop) | int(wraps ? Qt::TextWordWrap : Qt::TextSingleLine),
                   wraps ? placeholder_ : fontMetrics().elidedText(placeholder_, Qt::ElideRight, rect.width()));
}

}  // namespace tarn
