#include "platform/appkit/text/LabelWidget.h"

#include "platform/appkit/ToolTips.h"
#include "platform/appkit/text/DisplayText.h"

#include <QFontMetricsF>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

#include <cmath>

namespace tarn {

namespace {

// A fraction of a pixel too little and the text would be cut.
int widthOf(const QString& text, const QFont& font) {
  return static_cast<int>(std::ceil(QFontMetricsF(font).horizontalAdvance(text)));
}

// A text of no more average characters is never cut.
constexpr int columnsKept = 16;

// More than any screen shows of one line.
constexpr qsizetype longestShown = 2000;

}  // namespace

LabelWidget::LabelWidget(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
}

QString LabelWidget::shownText() const {
  return displayText(shortened(text(), longestShown), TabsShow::asMark);
}

QSize LabelWidget::sizeHint() const {
  if (wordWrap()) return QLabel::sizeHint();
  const QMargins edges = contentsMargins();
  const int around = 2 * (margin() + frameWidth());
  return {widthOf(shownText(), font()) + edges.left() + edges.right() + around,
          fontMetrics().height() + edges.top() + edges.bottom() + around};
}

QSize LabelWidget::minimumSizeHint() const {
  if (wordWrap()) return QLabel::minimumSizeHint();
  const QSize whole = sizeHint();
  return {std::min(whole.width(), columnsKept * fontMetrics().horizontalAdvance(u'x')), whole.height()};
}

bool LabelWidget::isElided() const {
  return !wordWrap() && widthOf(shownText(), font()) > contentsRect().width() - 2 * margin();
}

bool LabelWidget::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && isElided()) {
    showPlainToolTip(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
    return true;
  }
  return QLabel::event(event);
}

void LabelWidget::paintEvent(QPaintEvent* event) {
  if (wordWrap()) return QLabel::paintEvent(event);
  QPainter painter(this);
  drawFrame(&painter);
  const QRect area = contentsRect().adjusted(margin(), margin(), -margin(), -margin());
  const QString shown = fontMetrics().elidedText(shownText(), Qt::ElideRight, area.width());
  style()->drawItemText(&painter, area, int(alignment()) | Qt::TextSingleLine, palette(), isEnabled(), shown,
                        foregroundRole());
}

}  // namespace tarn
