#pragma once

#include <QWidget>

namespace tarn {

// Panes in one place: each child fills the whole of it, the hidden ones too, so that whichever shows next has its size
// already.
class PaneStack final : public QWidget {
public:
  explicit PaneStack(QWidget* parent = nullptr) : QWidget(parent) {}

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

protected:
  void resizeEvent(QResizeEvent* event) override;
  void childEvent(QChildEvent* event) override;

private:
  template <typename Size>
  QSize largest(Size sizeOf) const;
  void placePanes();
};

}  // namespace tarn
