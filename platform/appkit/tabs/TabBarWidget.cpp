#include "platform/appkit/tabs/TabBarWidget.h"

#include "platform/appkit/NSTabView.h"
#include "platform/appkit/ToolTips.h"
#include "platform/appkit/Utf8.h"

#include <QApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace tarn {

namespace {

constexpr int barHeight = 32;
constexpr int labelPadding = 12;  // on each side of a label
constexpr int labelHeight = 16;
constexpr int labelSize = 12;  // of the font
constexpr int gap = 2;         // between two tabs
constexpr int lowered = 4;     // how much lower a tab stands that isn't selected
constexpr int base = 2;        // the line below the tabs
constexpr int widest = 240;
constexpr double corner = 5.0;
constexpr double leastContrast = 4.6;

double linear(double channel) {
  return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double contrastToWhite(const QColor& color) {
  const double luminance =
      0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
  return 1.05 / (luminance + 0.05);
}

QColor darkEnoughForWhite(QColor color) {
  while (contrastToWhite(color) < leastContrast)
    color = color.darker(106);
  return color;
}

QColor mixed(const QColor& one, const QColor& other, double share) {
  return QColor::fromRgbF(static_cast<float>(one.redF() * (1 - share) + other.redF() * share),
                          static_cast<float>(one.greenF() * (1 - share) + other.greenF() * share),
                          static_cast<float>(one.blueF() * (1 - share) + other.blueF() * share));
}

}  // namespace

TabBarWidget::TabBarWidget(QWidget* parent) : QTabBar(parent) {
  setFocusPolicy(Qt::NoFocus);
  setUsesScrollButtons(true);
  setExpanding(false);
  setElideMode(Qt::ElideLeft);
  setDrawBase(false);
}

QFont TabBarWidget::labelFont() {
  QFont font = QApplication::font();
  font.setPixelSize(labelSize);
  return font;
}

QColor TabBarWidget::fill(bool selected) const {
  if (selected) return darkEnoughForWhite(palette().color(QPalette::Highlight));
  const QColor window = palette().color(QPalette::Window);
  // In a dark window a lighter fill would outshine the selected tab.
  const double share = window.lightness() < 128 ? 0.2 : 0.45;
  return darkEnoughForWhite(mixed(window, palette().color(QPalette::WindowText), share));
}

QSize TabBarWidget::tabSizeHint(int index) const {
  const int label = static_cast<int>(std::ceil(itemAt_(index).sizeOfLabel(false)));
  return {std::min(label + 2 * labelPadding + gap, widest), barHeight};
}

QSize TabBarWidget::minimumTabSizeHint(int index) const {
  // A label that may be cut to nothing still leaves a tab to click on.
  const int label = std::max(static_cast<int>(std::ceil(itemAt_(index).sizeOfLabel(true))), 2 * labelPadding);
  return {std::min(label + 2 * labelPadding + gap, tabSizeHint(index).width()), barHeight};
}

void TabBarWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  for (int index = 0; index < count(); ++index)
    paintTab(painter, index);
  // What the selected tab stands on joins it to its page.
  if (count() > 0) painter.fillRect(0, height() - base, width(), base, fill(true));
}

void TabBarWidget::paintTab(QPainter& painter, int index) const {
  const bool selected = index == currentIndex();
  QRectF area = tabRect(index).adjusted(0, selected ? 0 : lowered, -gap, 0);
  QPainterPath shape;
  shape.setFillRule(Qt::WindingFill);
  shape.addRoundedRect(area, corner, corner);
  shape.addRect(area.adjusted(0, corner, 0, 0));
  painter.fillPath(shape, fill(selected));

  painter.setFont(labelFont());
  painter.setPen(Qt::white);
  QRectF line(area.x() + labelPadding, 0, area.width() - 2 * labelPadding, labelHeight);
  line.moveCenter(QPointF(line.center().x(), area.center().y()));
  const QString label =
      QFontMetricsF(labelFont()).elidedText(toQString(itemAt_(index).label()), Qt::ElideLeft, line.width());
  painter.drawText(line, int(Qt::AlignRight | Qt::AlignVCenter) | Qt::TextSingleLine | Qt::TextDontClip, label);

  if (selected && hasFocus()) {
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(area.adjusted(3.5, 3.5, -3.5, -3.5), corner - 2, corner - 2);
  }
}

bool TabBarWidget::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QTabBar::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  const int index = tabAt(help->pos());
  if (index >= 0) showPlainToolTip(help->globalPos(), tabToolTip(index), this);
  return true;
}

// A bar without tabs would be a stop of the Tab key with nothing to see or do.
void TabBarWidget::tabInserted(int index) {
  setFocusPolicy(Qt::TabFocus);
  QTabBar::tabInserted(index);
}

void TabBarWidget::tabRemoved(int index) {
  if (count() == 0) setFocusPolicy(Qt::NoFocus);
  QTabBar::tabRemoved(index);
}

}  // namespace tarn
