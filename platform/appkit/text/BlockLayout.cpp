#include "platform/appkit/text/BlockLayout.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace tarn {

namespace {

constexpr double unlimited = 1e6;
// Where a row is that isn't to be drawn.
constexpr double outOfSight = 1e6;
constexpr int tabColumns = 8;

}  // namespace

BlockLayout::BlockLayout(const Request& request) : request_(request), layout_(request.text, request.font) {
  const QFontMetricsF metrics(request.font);
  QTextOption option;
  option.setWrapMode(request.width ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::NoWrap);
  option.setTabStopDistance(tabColumns * metrics.horizontalAdvance(u' '));
  option.setTextDirection(request.width ? Qt::LayoutDirectionAuto : Qt::LeftToRight);
  layout_.setTextOption(option);
  layout_.setCacheEnabled(true);

  QList<QTextLayout::FormatRange> formats;
  for (const int mark : request.marks) {
    QTextCharFormat format;
    format.setForeground(request.markColor);
    formats.append({mark < request.preeditPosition ? mark : mark + int(request.preedit.size()), 1, format});
  }
  if (!request.preedit.isEmpty()) {
    layout_.setPreeditArea(request.preeditPosition, request.preedit);
    QTextCharFormat format;
    format.setFontUnderline(true);
    formats.append({request.preeditPosition, int(request.preedit.size()), format});
  }
  layout_.setFormats(formats);

  const double height = rowHeight(request.font);
  layout_.beginLayout();
  for (QTextLine line = layout_.createLine(); line.isValid(); line = layout_.createLine()) {
    line.setLineWidth(request.width.value_or(unlimited));
    // All baselines at one distance: a fallback font's taller line moves nothing.
    line.setPosition(QPointF(0, line.lineNumber() * height + std::round(metrics.ascent()) - line.ascent() + 1));
  }
  layout_.endLayout();
  if (request.lastRowGoesOn) layout_.lineAt(rows()).setPosition(QPointF(0, outOfSight));
}

int BlockLayout::rowHeight(const QFont& font) {
  return int(std::ceil(QFontMetricsF(font).height())) + 2;
}

int BlockLayout::laidOut(int position) const {
  position = std::clamp(position, 0, int(request_.text.size()));
  return position > request_.preeditPosition ? position + int(request_.preedit.size()) : position;
}

int BlockLayout::exact(int laidOut) const {
  const int composed = int(request_.preedit.size());
  return laidOut <= request_.preeditPosition ? laidOut : std::max(request_.preeditPosition, laidOut - composed);
}

int BlockLayout::rowAt(int position) const {
  const QTextLine line = layout_.lineForTextPosition(laidOut(position));
  return line.isValid() ? std::min(line.lineNumber(), std::max(0, rows() - 1)) : std::max(0, rows() - 1);
}

int BlockLayout::rowStart(int row) const {
  return exact(layout_.lineAt(row).textStart());
}

int BlockLayout::rowEnd(int row) const {
  const QTextLine line = layout_.lineAt(row);
  return exact(line.textStart() + line.textLength());
}

double BlockLayout::xAt(int position, int preeditCaret) const {
  const int at =
      position == request_.preeditPosition && !request_.preedit.isEmpty() ? position + preeditCaret : laidOut(position);
  const QTextLine line = layout_.lineForTextPosition(at);
  return line.isValid() ? line.cursorToX(at) : 0;
}

int BlockLayout::positionAt(int row, double x) const {
  if (rows() == 0) return 0;
  return exact(layout_.lineAt(std::clamp(row, 0, rows() - 1)).xToCursor(x));
}

double BlockLayout::width() const {
  return rows() == 0 ? 0 : layout_.lineAt(0).horizontalAdvance();
}

void BlockLayout::draw(QPainter& painter, const QPointF& top, int selected, int selectedEnd, const QPalette& palette,
                       QPalette::ColorGroup group) const {
  QList<QTextLayout::FormatRange> selections;
  if (selected < selectedEnd) {
    QTextCharFormat format;
    format.setBackground(palette.brush(group, QPalette::Highlight));
    format.setForeground(palette.brush(group, QPalette::HighlightedText));
    const int start = laidOut(selected);
    selections.append({start, laidOut(selectedEnd) - start, format});
  }
  layout_.draw(&painter, top, selections, painter.clipBoundingRect());
}

std::shared_ptr<const BlockLayout> BlockLayoutCache::layout(const BlockLayout::Request& request) {
  constexpr std::size_t capacity = 200;
  const auto found =
      std::find_if(layouts_.begin(), layouts_.end(), [&](const auto& layout) { return layout->request() == request; });
  if (found != layouts_.end()) {
    layouts_.splice(layouts_.begin(), layouts_, found);
    return layouts_.front();
  }
  layouts_.push_front(std::make_shared<const BlockLayout>(request));
  if (layouts_.size() > capacity) layouts_.pop_back();
  return layouts_.front();
}

}  // namespace tarn
