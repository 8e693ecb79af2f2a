#pragma once

#include "platform/appkit/text/TextInputWidget.h"
#include "platform/foundation/NSFormatter.h"

#include <functional>
#include <utility>

class QStyleOptionFrame;

namespace tarn {

// One line of exact text to edit, of any length: only what fits is laid out. Line ends and control characters show as
// marks. Also the editor of a table's open cell: there Tab and Escape end the edit instead of moving the focus.
//
// The order of the signals: `editingBegan` at the user's first change, `editingEnded` at the end if there was a
// beginning, `finished` at every end, and on Enter `returnPressed` last.
class TextFieldWidget : public TextInputWidget {
  Q_OBJECT

public:
  enum class End { enter, tab, backtab, escape, focus };

  explicit TextFieldWidget(QWidget* parent = nullptr);

  // Who knows the formatter that is asked before every change by the user; null, or without one, nothing is refused.
  void setFormatter(std::function<const NSFormatter*()> formatter) { formatter_ = std::move(formatter); }

  // Tab, Shift+Tab and Escape end the edit with `finished` and leave the focus alone. Drawn without a frame.
  void setCellEditor(bool isCellEditor);

  // Shows dots and gives no copy of the text away.
  void setSecure(bool secure);
  bool isSecure() const { return secure_; }

  void editingLeft() override;
  std::size_t positionAt(const QPoint& point) const override;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

signals:
  // The focus left for another control, or a key ended the edit.
  void finished(tarn::TextFieldWidget::End how);
  // Enter, also when nothing was typed.
  void returnPressed();

protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

  bool mayChange(std::size_t position, std::size_t length, const QString& replacement) override;
  bool isReadable() const override { return !secure_; }
  TabsShow tabsShow() const override { return TabsShow::asMark; }
  void textChanged(std::size_t position, std::size_t removed, std::size_t inserted) override;
  void textSet(std::size_t kept) override;
  QRect caretRect(std::size_t position) const override;
  void showCaret() override;
  std::size_t rowEdge(bool atEnd) const override;

private:
  QStyleOptionFrame frameOption() const;
  QRect contents() const;
  // The block at the left edge.
  TextStore::Block leftBlock() const;
  double widthOf(const TextStore::Block& block) const;
  // Lets the part in sight begin `offset` right of `block`, or left of it.
  void setLeft(TextStore::Block block, double offset);
  void end(End how);

  std::function<const NSFormatter*()> formatter_;
  bool cellEditor_ = false;
  bool secure_ = false;
  // The part in sight begins `offset_` pixels right of the beginning of the block at `leftBlock_`.
  std::size_t leftBlock_ = 0;
  double offset_ = 0;
};

}  // namespace tarn
