#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/TextInputWidget.h"
#include "platform/appkit/text/TextMovement.h"
#include "platform/foundation/NSLocalizedString.h"

#include <QApplication>
#include <QClipboard>
#include <QCursor>
#include <QDrag>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <QStyleHints>

namespace tarn {

namespace {

// Milliseconds between two steps of a selection that a pointer outside pulls along.
constexpr int scrollInterval = 50;

}  // namespace

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
  } else if (event->button() == Qt::MiddleButton && primarySelection()) {
    moveCaret(positionAt(event->position().toPoint()), false);
    insertMimeText(primarySelection());
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
