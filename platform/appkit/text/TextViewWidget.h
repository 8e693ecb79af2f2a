#pragma once

#include "platform/appkit/text/RowStarts.h"
#include "platform/appkit/text/TextInputWidget.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

class QScrollBar;

namespace tarn {

// Many lines of exact text to edit, wrapped at the edge, with a vertical scroll bar. What is laid out is what is in
// sight, whatever the length of the text and of its lines.
class TextViewWidget final : public TextInputWidget {
  Q_OBJECT

public:
  explicit TextViewWidget(QWidget* parent = nullptr);

  // Asked before every change by the user, in UTF-16 code units. It may set the text by itself and answer false.
  using ShouldChange = std::function<bool(std::size_t position, std::size_t length, const QString& replacement)>;
  void setShouldChange(ShouldChange shouldChange) { shouldChange_ = std::move(shouldChange); }

  void scrollToPosition(std::size_t position);

  std::size_t positionAt(const QPoint& point) const override;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void changeEvent(QEvent* event) override;

  bool mayChange(std::size_t position, std::size_t length, const QString& replacement) override;
  TabsShow tabsShow() const override { return TabsShow::asGap; }
  void textChanged(std::size_t position, std::size_t removed, std::size_t inserted) override;
  void textSet(std::size_t kept) override;
  void composedChanged() override;
  QRect caretRect(std::size_t position) const override;
  void showCaret() override;
  std::size_t rowEdge(bool atEnd) const override;

private:
  // A row of the wrapped text: the block that it is in, and its number there.
  struct Row {
    TextStore::Block block;
    int row = 0;
  };
  // The rows of a block: those that begin in it, and the one that the block before it left unfinished.
  struct Span {
    // From the first row's start.
    TextStore::Block block;
    // Behind the last row. From here on the text is the next block's.
    std::size_t end = 0;
    std::shared_ptr<const BlockLayout> layout;
  };

  QRect contents() const;
  int rowHeight() const;
  int rowsInSight() const;
  // True if the block's line goes on in the next one.
  bool goesOn(const TextStore::Block& block) const { return block.ending == 0 && store().hasNext(block); }
  // Where the first of the block's rows starts; finds it from the blocks before it if it isn't known.
  RowStarts::Start firstRow(const TextStore::Block& block) const;
  Span spanOf(const TextStore::Block& block) const;
  int rowsOf(const TextStore::Block& block) const { return spanOf(block).layout->rows(); }
  std::size_t startOf(const Row& row) const;
  Row rowOf(std::size_t position) const;
  // As many rows further, up to the ends of the text.
  Row moved(Row row, std::ptrdiff_t rows) const;
  // The nearest position to `x` at which the caret shows in this row and not in the next one.
  std::size_t positionIn(const Row& row, double x) const;
  std::size_t lastPositionIn(const Row& row, std::size_t position) const;
  void setTop(Row row);
  void scrollBarMoved(int value);
  // Lays out what is in sight, and brings the scroll bar up to date.
  void settle();
  void updateColumns();
  void moveVertically(std::ptrdiff_t rows, bool select);

  ShouldChange shouldChange_;
  // What the layouts made so far have found out.
  mutable RowStarts rowStarts_;
  QScrollBar* scrollBar_;
  // The first character of the top row.
  std::size_t top_ = 0;
  // Where the caret wants to be in the rows that it moves through, and where the last such move left it.
  double goalX_ = 0;
  std::optional<std::size_t> goalCaret_;
  double wheelRest_ = 0;
  // What the scroll bar was last set to.
  int barValue_ = 0;
};

}  // namespace tarn
