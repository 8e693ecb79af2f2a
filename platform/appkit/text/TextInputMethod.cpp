#include "platform/appkit/text/TextInputWidget.h"

#include <QInputMethodEvent>
#include <QPointer>

#include <algorithm>

namespace tarn {

void TextInputWidget::inputMethodEvent(QInputMethodEvent* event) {
  const QPointer<TextInputWidget> self(this);
  setComposed({});
  const bool replaces = event->replacementLength() > 0;
  if (replaces || !event->commitString().isEmpty()) {
    const std::ptrdiff_t from = std::ptrdiff_t(caret_) + event->replacementStart();
    const std::size_t start = replaces ? std::size_t(std::max<std::ptrdiff_t>(from, 0)) : selectionStart();
    const std::size_t length = replaces ? std::size_t(event->replacementLength()) : selectionEnd() - start;
    replaceByUser(start, length, event->commitString());
    if (!self) return;
  }
  setComposed(event->preeditString());
  preeditCaret_ = int(preedit_.size());
  for (const QInputMethodEvent::Attribute& attribute : event->attributes()) {
    if (attribute.type == QInputMethodEvent::Cursor) preeditCaret_ = std::clamp(attribute.start, 0, preeditCaret_);
  }
  event->accept();
  if (!preedit_.isEmpty()) showCaret();
  restartBlinking();
  updateMicroFocus();
  update();
}

QVariant TextInputWidget::inputMethodQuery(Qt::InputMethodQuery query) const {
  // The input method looks at the caret's surroundings, as much of them as one block holds.
  const TextStore::Block block = store_.blockAt(caret_);
  const std::size_t caret = std::min(caret_, block.contentEnd());
  const auto surroundings = [&](std::size_t from, std::size_t to) {
    return isReadable() ? store_.text(from, to - from) : QString();
  };
  switch (query) {
    case Qt::ImCursorRectangle:
      return caretRect(caret_);
    case Qt::ImFont:
      return font();
    case Qt::ImCursorPosition:
      return isReadable() ? int(caret - block.start) : 0;
    case Qt::ImAnchorPosition:
      return isReadable() ? int(std::clamp(anchor_, block.start, block.contentEnd()) - block.start) : 0;
    case Qt::ImSurroundingText:
      return surroundings(block.start, block.contentEnd());
    case Qt::ImTextBeforeCursor:
      return surroundings(block.start, caret);
    case Qt::ImTextAfterCursor:
      return surroundings(caret, block.contentEnd());
    case Qt::ImCurrentSelection:
      return surroundings(selectionStart(), std::min(selectionEnd(), selectionStart() + TextStore::longestBlock));
    default:
      return QFrame::inputMethodQuery(query);
  }
}

}  // namespace tarn
