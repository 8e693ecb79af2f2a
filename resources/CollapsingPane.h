#pragma once

#include <QWidget>

namespace tarn {

// A pane that takes no room while all of its controls are hidden, and comes back with the first that shows.
class CollapsingPane final : public QWidget {
public:
  explicit CollapsingPane(QWidget* parent = nullptr) : QWidget(parent) {}

protected:
  void childEvent(QChildEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace tarn
