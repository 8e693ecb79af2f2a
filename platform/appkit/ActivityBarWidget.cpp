#include "platform/appkit/ActivityBarWidget.h"

#include <QPainter>
#include <QTimerEvent>

#include <utility>

namespace tarn {

namespace {

constexpr int delay = 300;     // milliseconds: short work shows nothing
constexpr int frameTime = 33;  // milliseconds
constexpr int framesPerRun = 45;
constexpr int thickness = 3;

}  // namespace

ActivityBarWidget::ActivityBarWidget(QWidget* parent) : QWidget(parent) {
  setFixedHeight(thickness);
  setFocusPolicy(Qt::NoFocus);
}

void ActivityBarWidget::start() {
  if (running_) return;
  running_ = true;
  timer_ = startTimer(delay);
}

void ActivityBarWidget::stop() {
  if (!running_) return;
  running_ = false;
  step_ = 0;
  killTimer(std::exchange(timer_, 0));
  update();
}

QSize ActivityBarWidget::sizeHint() const {
  return {64, thickness};
}

void ActivityBarWidget::paintEvent(QPaintEvent*) {
  if (step_ == 0) return;
  QPainter painter(this);
  const QColor color = palette().color(QPalette::Highlight);
  QColor track = color;
  track.setAlpha(48);
  painter.fillRect(rect(), track);
  const int length = width() / 4;
  const int position = step_ % framesPerRun * (width() + length) / framesPerRun - length;
  painter.fillRect(QRect(position, 0, length, height()), color);
}

void ActivityBarWidget::timerEvent(QTimerEvent* event) {
  if (event->timerId() != timer_) return;
  if (step_++ == 0) {
    killTimer(timer_);
    timer_ = startTimer(frameTime);
  }
  if (isVisible()) update();
}

}  // namespace tarn
