#pragma once

#include <QWidget>

namespace tarn {

// The widget of NSActivityBar: three points high, empty while idle.
class ActivityBarWidget final : public QWidget {
public:
  explicit ActivityBarWidget(QWidget* parent = nullptr);

  void start();
  void stop();

  QSize sizeHint() const override;

protected:
  void paintEvent(QPaintEvent* event) override;
  void timerEvent(QTimerEvent* event) override;

private:
  bool running_ = false;
  int step_ = 0;  // frames shown of this run
  int timer_ = 0;
};

}  // namespace tarn
