#pragma once

#include "platform/appkit/text/BlockLayout.h"
#include "platform/appkit/text/DisplayText.h"
#include "platform/appkit/text/TextHistory.h"
#include "platform/appkit/text/TextStore.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QFrame>
#include <QString>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class QMimeData;

namespace tarn {

// What fields and text views share: an exact text, a caret and a selection, undo, and the ways in which the user
// changes the text (keys, input method, clipboard, primary selection, drop). All positions are UTF-16 code units of the
// text as a whole. How the text is laid out is the derived class's. The handlers of keys, of the pointer and of the
// input method have a source file each.
class TextInputWidget : public QFrame {
  Q_OBJECT
  Q_PROPERTY(QString placeholderText READ placeholderText WRITE setPlaceholderText)

public:
  // By code: sends no signal, asks nothing, clears undo, makes the edit unchanged again and puts the caret at the end.
  // Where the new text begins with the old one only the rest is added.
  void setUtf8(std::string_view text);
  // The same, for a text that begins with the old one and goes on with `text`.
  void appendUtf8(std::string_view text);
  void setText(const QString& text);

  std::string utf8(std::size_t position = 0) const { return store_.utf8(position); }
  QString text() const { return store_.text(0, store_.length()); }
  QString text(std::size_t position, std::size_t length) const { return store_.text(position, length); }
  std::size_t textLength() const { return store_.length(); }

  // True if the user changed the text since it was last set by code.
  bool isEdited() const { return edited_; }

  // Ends an edit that the user began.
  void commitEditing();
  // The same, because the focus went to another control.
  virtual void editingLeft() { commitEditing(); }

  std::size_t caret() const { return caret_; }
  std::size_t selectionStart() const { return std::min(caret_, anchor_); }
  std::size_t selectionEnd() const { return std::max(caret_, anchor_); }
  bool hasSelection() const { return caret_ != anchor_; }
  void setSelection(std::size_t anchor, std::size_t caret);

  QString placeholderText() const { return placeholder_; }
  void setPlaceholderText(const QString& text);

  // Replaces a part of the text as the user does: it may be refused, begins an edit, and can be undone.
  void replaceByUser(std::size_t position, std::size_t length, const QString& replacement);

  // The position nearest to a point of the widget.
  virtual std::size_t positionAt(const QPoint& point) const = 0;

  QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

  bool canUndo() const { return history_.canUndo(); }
  bool canRedo() const { return history_.canRedo(); }

public slots:
  void undo();
  void redo();
  void cut();
  void copy();
  void paste();
  void selectAll();

signals:
  // The user's first change.
  void editingBegan();
  // The end of an edit that had a beginning.
  void editingEnded();

protected:
  explicit TextInputWidget(TextStore::Lines lines, QWidget* parent);

  // Whether the user may replace this part.
  virtual bool mayChange(std::size_t position, std::size_t length, const QString& replacement) = 0;
  // False: dots instead of the text, and no copy of it.
  virtual bool isReadable() const { return true; }
  virtual TabsShow tabsShow() const = 0;
  // The user has changed the text: at `position`, by so many code units removed and inserted.
  virtual void textChanged(std::size_t position, std::size_t removed, std::size_t inserted) = 0;
  // Code has set the text. The first `kept` code units are the same as before.
  virtual void textSet(std::size_t kept) = 0;
  // The text that the input method shows at the caret is another one.
  virtual void composedChanged() {}
  // Where a caret at `position` shows.
  virtual QRect caretRect(std::size_t position) const = 0;
  virtual void showCaret() = 0;
  // What the middle button pastes; null where the desktop has no such selection.
  virtual const QMimeData* primarySelection() const;
  virtual void setPrimarySelection(const QString& text) const;
  // The start or the end of the row that the caret is in.
  virtual std::size_t rowEdge(bool atEnd) const = 0;

  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void timerEvent(QTimerEvent* event) override;

  const TextStore& store() const { return store_; }
  TextStore& store() { return store_; }

  // Moves the caret, with the selection's other end left behind or not.
  void moveCaret(std::size_t position, bool select);
  // The layout of one block, from a small cache. Without a width it is one row. The block may have been made to start
  // or end elsewhere than the store's.
  std::shared_ptr<const BlockLayout> layoutBlock(const TextStore::Block& block, std::optional<double> width,
                                                 bool lastRowGoesOn = false) const;
  // Where a caret at `position` is in its block's layout.
  double caretX(const BlockLayout& layout, const TextStore::Block& block, std::size_t position) const;
  void drawBlock(QPainter& painter, const QPointF& top, const BlockLayout& layout, const TextStore::Block& block) const;
  void drawCaret(QPainter& painter) const;
  // In one line, cut where the space ends; or in as many as it takes.
  void drawPlaceholder(QPainter& painter, const QRect& rect, bool wraps) const;

private:
  // Asks, and answers whether the change may go on: the answer may have been no, or the one asked has set the text or
  // taken the view away.
  bool isAllowed(const TextChange& change);
  void applyChange(const TextChange& change);
  // Code has changed the text behind the first `kept` code units.
  void setByCode(std::size_t kept);
  bool performKeyEquivalent(const QKeyEvent* event);
  bool handleMoveKey(QKeyEvent* event);
  bool handleEditKey(QKeyEvent* event);
  bool isEditKey(QKeyEvent* event) const;
  // True if the text around the caret is read from right to left, so that the next character is to the left.
  bool readsRightToLeft() const;
  void deleteTo(std::size_t position);
  // A copy of the selection goes with the pointer.
  void dragSelection();
  void showDropCaret(std::optional<std::size_t> position);
  void insertMimeText(const QMimeData* data);
  void publishPrimarySelection() const;
  void restartBlinking();
  void setComposed(const QString& text);
  void stopComposing();
  // What the screen reader and the input method hear of.
  void announceCaret();

  TextStore store_;
  TextHistory history_;
  std::size_t caret_ = 0;
  std::size_t anchor_ = 0;
  bool edited_ = false;
  // An edit has begun and not ended yet.
  bool began_ = false;
  QString placeholder_;
  QString preedit_;
  int preeditCaret_ = 0;
  mutable BlockLayoutCache layouts_;
  QBasicTimer blinking_;
  QBasicTimer dragging_;
  bool caretOn_ = false;
  // Counts each change, so that an operation sees whether the one it asked has changed the text.
  unsigned revision_ = 0;
  bool selectingByMouse_ = false;
  // Where the button went down inside the selection: the beginning of a drag or a click.
  std::optional<QPoint> pressedSelection_;
  std::optional<std::size_t> dropCaret_;
  QElapsedTimer sinceDoubleClick_;
};

}  // namespace tarn
