#pragma once

#include <QTabBar>

#include <functional>

namespace tarn {

class NSTabViewItem;

// The row of tabs: each label white on a fill dark enough for it, in the light palette and the dark one. Many tabs get
// narrower, and scroll when they can't.
class TabBarWidget final : public QTabBar {
public:
  explicit TabBarWidget(QWidget* parent);

  // Who knows the item of a tab; asked for its label's size.
  void setItemProvider(std::function<const NSTabViewItem&(int index)> itemAt) { itemAt_ = std::move(itemAt); }

  static QFont labelFont();
  // The fill behind a label.
  QColor fill(bool selected) const;

protected:
  QSize tabSizeHint(int index) const override;
  QSize minimumTabSizeHint(int index) const override;
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;
  void tabInserted(int index) override;
  void tabRemoved(int index) override;

private:
  void paintTab(QPainter& painter, int index) const;

  std::function<const NSTabViewItem&(int index)> itemAt_;
};

}  // namespace tarn
