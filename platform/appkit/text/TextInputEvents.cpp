#include "platform/appkit/FocusChange.h"
#include "platform/appkit/KeyEquivalents.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/TextInputWidget.h"
#include "platform/appkit/text/TextMovement.h"
#include "platform/foundation/NSLocalizedString.h"

#include <QApplication>
#include <QClipboard>
#include <QCursor>
#include <QDrag>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <QStyleHints>

#include <algorithm>
#include <array>

namespace tarn {

namespace {

enum class Move { nextCharacter, previousCharacter, nextWord, previousWord, rowStart, rowEnd, textStart, textEnd };

struct MoveKey {
  QKeySequence::StandardKey key;
  Move move;
  bool select;
};

constexpr std::array moveKeys{
    MoveKey{QKeySequence::MoveToNextChar, Move::nextCharacter, false},
    MoveKey{QKeySequence::MoveToPreviousChar, Move::previousCharacter, false},
    MoveKey{QKeySequence::MoveToNextWord, Move::nextWord, false},
    MoveKey{QKeySequence::MoveToPreviousWord, Move::previousWord, false},
    MoveKey{QKeySequence::MoveToStartOfLine, Move::rowStart, false},
    MoveKey{QKeySequence::MoveToEndOfLine, Move::rowEnd, false},
    MoveKey{QKeySequence::MoveToStartOfDocument, Move::textStart, false},
    MoveKey{QKeySequence::MoveToEndOfDocument, Move::textEnd, false},
    MoveKey{QKeySequence::SelectNextChar, Move::nextCharacter, true},
    MoveKey{QKeySequence::SelectPreviousChar, Move::previousCharacter, true},
    MoveKey{QKeySequence::SelectNextWord, Move::nextWord, true},
    MoveKey{QKeySequence::SelectPreviousWord, Move::previousWord, true},
    MoveKey{QKeySequence::SelectStartOfLine, Move::rowStart, true},
    MoveKey{QKeySequence::SelectEndOfLine, Move::rowEnd, true},
    MoveKey{QKeySequence::SelectStartOfDocument, Move::textStart, true},
    MoveKey{QKeySequence::SelectEndOfDocument, Move::textEnd, true},
};

// Milliseconds between two steps of a selection that a pointer outside pulls along.
constexpr int scrollInterval = 50;

const MoveKey* moveKeyOf(QKeyEvent* event) {
  const auto found =
      std::find_if(moveKeys.begin(), moveKeys.end(), [&](const MoveKey& key) { return event->matches(key.key); });
  return found == moveKeys.end() ? nullptr : &*found;
}

// The step that goes the other way, for an arrow key in text from right to left.
Move mirrored(Move move) {
  switch (move) {
    case Move::nextCharacter:
      return Move::previousCharacter;
    case Move::previousCharacter:
      return Move::nextCharacter;
    case Move::nextWord:
      return Move::previousWord;
    case Move::previousWord:
      return Move::nextWord;
    default:
      return move;
  }
}

// The text that a key types; nothing for a chord or a key of another kind.
QString typedText(const QKeyEvent* event) {
  const QString text = event->text();
  const Qt::KeyboardModifiers chord = event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
  if (text.isEmpty() || chord == Qt::ControlModifier || chord == Qt::AltModifier) return {};
  const QChar first = text.front();
  const bool types = first.isPrint() || first.category() == QChar::Other_Format ||
                     first.category() == QChar::Other_PrivateUse || first.isSurrogate();
  return types ? text : QString();
}

}  // namespace

bool TextInputWidget::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    auto* key = static_cast<QKeyEvent*>(event);
    const bool isChord = key->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
    if (isEditKey(key) || moveKeyOf(key) || (!isChord && !typedText(key).isEmpty())) {
      key->accept();
      return true;
    }
  }
  if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange ||
      event->type() == QEvent::StyleChange) {
    layouts_.clear();
  }
  return QFrame::event(event);
}

bool TextInputWidget::isEditKey(QKeyEvent* event) const {
  constexpr std::array keys{QKeySequence::Copy,           QKeySequence::Cut,       QKeySequence::Paste,
                            QKeySequence::SelectAll,      QKeySequence::Undo,      QKeySequence::Redo,
                            QKeySequence::Delete,         QKeySequence::Backspace, QKeySequence::DeleteStartOfWord,
                            QKeySequence::DeleteEndOfWord};
  return std::any_of(keys.begin(), keys.end(), [&](QKeySequence::StandardKey key) { return event->matches(key); });
}

void TextInputWidget::keyPressEvent(QKeyEvent* event) {
  event->accept();
  if (event->modifiers() & Qt::ControlModifier) {
    if (const char character = charactersIgnoringModifiers(*event)) {
      if (performTextKeyEquivalent(*this, character)) return;
    }
  }
  if (handleMoveKey(event) || handleEditKey(event)) return;
  if (const QString text = typedText(event); !text.isEmpty()) {
    replaceByHand(selectionStart(), selectionEnd() - selectionStart(), text);
    return;
  }
  event->ignore();
}

bool TextInputWidget::readsRightToLeft() const {
  const TextStore::Block block = store_.blockAt(caret_);
  return isReadable() && store_.text(block.start, block.length).isRightToLeft();
}

bool TextInputWidget::handleMoveKey(QKeyEvent* event) {
  const MoveKey* key = moveKeyOf(event);
  if (!key) return false;
  const bool collapses = hasSelection() && !key->select;
  std::size_t to = caret_;
  switch (readsRightToLeft() ? mirrored(key->move) : key->move) {
    case Move::nextCharacter:
      to = collapses ? selectionEnd() : nextCharacter(store_, caret_);
      break;
    case Move::previousCharacter:
      to = collapses ? selectionStart() : previousCharacter(store_, caret_);
      break;
    // Where words are could be read off the steps over hidden text.
    case Move::nextWord:
      to = isReadable() ? nextWord(store_, caret_) : store_.length();
      break;
    case Move::previousWord:
      to = isReadable() ? previousWord(store_, caret_) : 0;
      break;
    case Move::rowStart:
      to = rowEdge(false);
      break;
    case Move::rowEnd:
      to = rowEdge(true);
      break;
    case Move::textStart:
      to = 0;
      break;
    case Move::textEnd:
      to = store_.length();
      break;
  }
  moveCaret(to, key->select);
  return true;
}

bool TextInputWidget::handleEditKey(QKeyEvent* event) {
  if (event->matches(QKeySequence::Undo)) {
    undo();
  } else if (event->matches(QKeySequence::Redo)) {
    redo();
  } else if (event->matches(QKeySequence::Copy)) {
    copy();
  } else if (event->matches(QKeySequence::Cut)) {
    cut();
  } else if (event->matches(QKeySequence::Paste)) {
    paste();
  } else if (event->matches(QKeySequence::SelectAll)) {
    selectAll();
  } else if (event->matches(QKeySequence::Delete)) {
    deleteTo(nextCharacter(store_, caret_));
  } else if (event->key() == Qt::Key_Backspace && !(event->modifiers() & ~Qt::ShiftModifier)) {
    deleteTo(previousCharacter(store_, caret_));
  } else if (event->matches(QKeySequence::DeleteEndOfWord)) {
    deleteTo(isReadable() ? nextWord(store_, caret_) : store_.length());
  } else if (event->matches(QKeySequence::DeleteStartOfWord)) {
    deleteTo(isReadable() ? previousWord(store_, caret_) : 0);
  } else {
    return false;
  }
  return true;
}

void TextInputWidget::deleteTo(std::size_t position) {
  const std::size_t start = hasSelection() ? selectionStart() : std::min(caret_, position);
  const std::size_t end = hasSelection() ? selectionEnd() : std::max(caret_, position);
  replaceByHand(start, end - start, {});
}

void TextInputWidget::insertMimeText(const QMimeData* data) {
  if (!data || !data->hasText()) return;
  replaceByHand(selectionStart(), selectionEnd() - selectionStart(), data->text());
}

void TextInputWidget::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const std::size_t position = positionAt(event->position().toPoint());
  const int interval = QGuiApplication::styleHints()->mouseDoubleClickInterval();
  if (sinceDoubleClick_.isValid() && !sinceDoubleClick_.hasExpired(interval)) {
    sinceDoubleClick_.invalidate();
    const WordRange line = lineAt(store_, position);
    setSelection(line.start, line.end);
    return;
  }
  if (isReadable() && !event->modifiers() && position >= selectionStart() && position < selectionEnd()) {
    pressedSelection_ = event->position().toPoint();
    return;
  }
  selectingByMouse_ = true;
  moveCaret(position, event->modifiers() & Qt::ShiftModifier);
}

void TextInputWidget::mouseMoveEvent(QMouseEvent* event) {
  const QPoint point = event->position().toPoint();
  if (pressedSelection_ && (event->buttons() & Qt::LeftButton)) {
    const int moved = (point - *pressedSelection_).manhattanLength();
    if (moved >= QApplication::startDragDistance()) dragSelection();
    return;
  }
  if (!selectingByMouse_ || !(event->buttons() & Qt::LeftButton)) return;
  moveCaret(positionAt(point), true);
  // A pointer that waits outside goes on selecting.
  if (rect().contains(point)) {
    dragging_.stop();
  } else if (!dragging_.isActive()) {
    dragging_.start(scrollInterval, this);
  }
}

void TextInputWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    if (pressedSelection_) {
      pressedSelection_.reset();
      return moveCaret(positionAt(event->position().toPoint()), false);
    }
    selectingByMouse_ = false;
    dragging_.stop();
    publishPrimarySelection();
  } else if (event->button() == Qt::MiddleButton && QGuiApplication::clipboard()->supportsSelection()) {
    moveCaret(positionAt(event->position().toPoint()), false);
    insertMimeText(QGuiApplication::clipboard()->mimeData(QClipboard::Selection));
  }
}

void TextInputWidget::dragSelection() {
  pressedSelection_.reset();
  auto* data = new QMimeData;
  data->setText(store_.text(selectionStart(), selectionEnd() - selectionStart()));
  auto* drag = new QDrag(this);
  drag->setMimeData(data);
  drag->exec(Qt::CopyAction);
}

void TextInputWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  sinceDoubleClick_.start();
  const WordRange word =
      isReadable() ? wordAt(store_, positionAt(event->position().toPoint())) : WordRange{0, store_.length()};
  setSelection(word.start, word.end);
}

void TextInputWidget::contextMenuEvent(QContextMenuEvent* event) {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  const auto add = [&](const std::string& title, QKeySequence::StandardKey key, bool enabled, auto slot) {
    QAction* action = menu->addAction(toQString(title), this, slot);
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetShortcut);
    action->setEnabled(enabled);
  };
  const QMimeData* clipboard = QGuiApplication::clipboard()->mimeData();
  add(localizedString("Undo"), QKeySequence::Undo, canUndo(), &TextInputWidget::undo);
  add(localizedString("Redo"), QKeySequence::Redo, canRedo(), &TextInputWidget::redo);
  menu->addSeparator();
  add(localizedString("Cut"), QKeySequence::Cut, hasSelection() && isReadable(), &TextInputWidget::cut);
  add(localizedString("Copy"), QKeySequence::Copy, hasSelection() && isReadable(), &TextInputWidget::copy);
  add(localizedString("Paste"), QKeySequence::Paste, clipboard && clipboard->hasText(), &TextInputWidget::paste);
  menu->addSeparator();
  add(localizedString("Select All"), QKeySequence::SelectAll, textLength() > 0, &TextInputWidget::selectAll);
  menu->popup(event->reason() == QContextMenuEvent::Keyboard ? mapToGlobal(caretRect(caret_).bottomLeft())
                                                             : event->globalPos());
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

void TextInputWidget::inputMethodEvent(QInputMethodEvent* event) {
  const QPointer<TextInputWidget> self(this);
  setComposed({});
  const bool replaces = event->replacementLength() > 0;
  if (replaces || !event->commitString().isEmpty()) {
    const std::ptrdiff_t from = std::ptrdiff_t(caret_) + event->replacementStart();
    const std::size_t start = replaces ? std::size_t(std::max<std::ptrdiff_t>(from, 0)) : selectionStart();
    const std::size_t length = replaces ? std::size_t(event->replacementLength()) : selectionEnd() - start;
    replaceByHand(start, length, event->commitString());
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

void TextInputWidget::dragEnterEvent(QDragEnterEvent* event) {
  dragMoveEvent(event);
}

void TextInputWidget::dragMoveEvent(QDragMoveEvent* event) {
  if (!event->mimeData()->hasText()) {
    event->ignore();
    return;
  }
  // A copy: what was dragged stays where it came from.
  event->setDropAction(Qt::CopyAction);
  event->accept();
  showDropCaret(positionAt(event->position().toPoint()));
}

void TextInputWidget::dragLeaveEvent(QDragLeaveEvent*) {
  showDropCaret({});
}

void TextInputWidget::showDropCaret(std::optional<std::size_t> position) {
  if (dropCaret_ == position) return;
  dropCaret_ = position;
  update();
}

void TextInputWidget::dropEvent(QDropEvent* event) {
  showDropCaret({});
  if (!event->mimeData()->hasText()) return;
  event->setDropAction(Qt::CopyAction);
  event->accept();
  const QPointer<TextInputWidget> self(this);
  // With the focus here the edit that the drop begins will also end.
  setFocus(Qt::OtherFocusReason);
  if (!self) return;
  moveCaret(positionAt(event->position().toPoint()), false);
  insertMimeText(event->mimeData());
}

void TextInputWidget::timerEvent(QTimerEvent* event) {
  if (event->timerId() == blinking_.timerId()) {
    caretOn_ = !caretOn_;
    update(caretRect(caret_));
  } else if (event->timerId() == dragging_.timerId()) {
    moveCaret(positionAt(mapFromGlobal(QCursor::pos())), true);
  } else {
    QFrame::timerEvent(event);
  }
}

}  // namespace tarn
