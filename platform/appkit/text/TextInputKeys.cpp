#include "platform/appkit/text/TextInputWidget.h"
#include "platform/appkit/text/TextMovement.h"
#include "platform/foundation/Log.h"

#include <QKeyEvent>

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
  if (performKeyEquivalent(event) || handleMoveKey(event) || handleEditKey(event)) return;
  if (const QString text = typedText(event); !text.isEmpty()) {
    replaceByUser(selectionStart(), selectionEnd() - selectionStart(), text);
    return;
  }
  event->ignore();
}

// Select all, copy, paste and cut, by Ctrl and the letter A, C, V or X.
bool TextInputWidget::performKeyEquivalent(const QKeyEvent* event) {
  const bool isLetter = event->key() >= Qt::Key_A && event->key() <= Qt::Key_Z;
  if (!isLetter || !(event->modifiers() & Qt::ControlModifier)) return false;
  logLine("NSTextField performKeyEquivalent");
  if (event->modifiers() & Qt::ShiftModifier) return false;
  switch (event->key()) {
    case Qt::Key_A:
      selectAll();
      return true;
    case Qt::Key_C:
      copy();
      return true;
    case Qt::Key_V:
      paste();
      return true;
    case Qt::Key_X:
      cut();
      return true;
    default:
      return false;
  }
}

bool TextInputWidget::readsRightToLeft() const {
  const TextStore::Block block = store_.blockAt(caret_);
  return isReadable() && store_.text(block.start, block.length).isRightToLeft();
}

bool TextInputWidget::handleMoveKey(QKeyEvent* event) {
  const MoveKey* key = moveKeyOf(event);
  if (!key) return false;
  const bool collapses = hasSelection() && !key->select;
  const auto destination = [&](Move move) -> std::size_t {
    switch (move) {
      case Move::nextCharacter:
        return collapses ? selectionEnd() : nextCharacter(store_, caret_);
      case Move::previousCharacter:
        return collapses ? selectionStart() : previousCharacter(store_, caret_);
      // Where words are could be read off the steps over hidden text.
      case Move::nextWord:
        return isReadable() ? nextWord(store_, caret_) : store_.length();
      case Move::previousWord:
        return isReadable() ? previousWord(store_, caret_) : 0;
      case Move::rowStart:
        return rowEdge(false);
      case Move::rowEnd:
        return rowEdge(true);
      case Move::textStart:
        return 0;
      case Move::textEnd:
        return store_.length();
    }
    return caret_;
  };
  moveCaret(destination(readsRightToLeft() ? mirrored(key->move) : key->move), key->select);
  return true;
}

bool TextInputWidget::handleEditKey(QKeyEvent* event) {
  // Copy, cut and paste have other keys than those with a letter.
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
  replaceByUser(start, end - start, {});
}

}  // namespace tarn
