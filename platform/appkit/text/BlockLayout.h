#pragma once

#include <QColor>
#include <QFont>
#include <QList>
#include <QPalette>
#include <QString>
#include <QTextLayout>

#include <list>
#include <memory>
#include <optional>

namespace tarn {

// One block of text laid out in rows of one height, whatever fonts its characters need. Positions are code units from
// the block's start.
class BlockLayout final {
public:
  // What a layout is made from. Without a width the block is one row.
  struct Request {
    // As drawn: marks in place of what would be invisible.
    QString text;
    // Which characters are marks, which a calmer colour tells from real ones.
    QList<int> marks;
    QFont font;
    QColor markColor;
    std::optional<double> width;
    // The line goes on behind the block: its last row waits for what follows, and isn't one of this layout's.
    bool lastRowGoesOn = false;
    // Text that the input method is composing, and where.
    QString preedit;
    int preeditPosition = 0;

    bool operator==(const Request&) const = default;
  };

  explicit BlockLayout(const Request& request);
  BlockLayout(const BlockLayout&) = delete;
  BlockLayout& operator=(const BlockLayout&) = delete;

  const Request& request() const { return request_; }
  int rows() const { return layout_.lineCount() - (request_.lastRowGoesOn ? 1 : 0); }
  // Of the first row.
  double width() const;

  int rowAt(int position) const;
  // Also of the row behind the last one, if that one goes on.
  int rowStart(int row) const;
  int rowEnd(int row) const;
  double xAt(int position, int preeditCaret) const;
  int positionAt(int row, double x) const;

  // Draws all rows, the first one's top at `top`; from `selected` to `selectedEnd` in the selection's colours.
  void draw(QPainter& painter, const QPointF& top, int selected, int selectedEnd, const QPalette& palette,
            QPalette::ColorGroup group) const;

  static int rowHeight(const QFont& font);

private:
  // The layout counts the composed text in its positions.
  int laidOut(int position) const;
  int exact(int laidOut) const;

  Request request_;
  QTextLayout layout_;
};

// The layouts last used, so that a repaint or a step of the caret lays nothing out again.
class BlockLayoutCache final {
public:
  std::shared_ptr<const BlockLayout> layout(const BlockLayout::Request& request);
  void clear() { layouts_.clear(); }

private:
  std::list<std::shared_ptr<const BlockLayout>> layouts_;
};

}  // namespace tarn
