#pragma once

#include "platform/appkit/RowView.h"
#include "platform/appkit/outline/OutlineModel.h"

#include <QTreeView>

namespace tarn {

// Who stands behind an outline's widget.
class OutlineViewClient {
public:
  virtual ~OutlineViewClient() = default;

  virtual bool shouldExpand(const NSItem& item) = 0;
  virtual bool shouldSelect(const NSItem& item) = 0;
};

// The widget behind NSOutlineView. A layout promotes a QTreeView to it; it needs no property. What a mouse and a
// keyboard do is decided here, not by the toolkit: it would select and expand without asking.
class OutlineViewWidget final : public RowView<QTreeView> {
public:
  explicit OutlineViewWidget(QWidget* parent = nullptr);
  ~OutlineViewWidget() override;

  // May be null.
  void setClient(OutlineViewClient* client) { client_ = client; }
  OutlineModel& items() { return *items_; }
  const OutlineModel& items() const { return *items_; }

  // By code: the client isn't asked.
  void expandItem(const NSItem& item);
  void collapseItem(const NSItem& item);

  std::vector<int> selectedRows() const;
  void selectRows(const std::vector<int>& rows);

  // The root's row begins 16 points further left than its level says.
  QRect visualRect(const QModelIndex& index) const override;
  // Where the triangle is; empty for a row without one.
  QRect triangleRect(const QModelIndex& index) const;

protected:
  std::string toolTipAt(const QPoint& position) const override;
  QRect currentRowRect() const override { return visualRect(currentIndex()); }
  void paintEvent(QPaintEvent* event) override;
  void drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

private:
  bool isSelected(const QModelIndex& index) const;
  void toggleByUser(const NSItem& item);
  void expandByUser(const NSItem& item);
  void selectByUser(const NSItem& item, Qt::KeyboardModifiers modifiers);
  void selectRange(const NSItem& from, const NSItem& to);
  void moveByUser(int row, Qt::KeyboardModifiers modifiers);
  void moveSideways(bool forward, Qt::KeyboardModifiers modifiers);
  int currentRow() const;
  QFont fontOf(const QModelIndex& index) const;
  void paintBackground(QPainter& painter, const QRect& row, const QModelIndex& index, bool hovered) const;
  void paintTriangle(QPainter& painter, const QRect& rect, bool expanded) const;

  std::unique_ptr<OutlineModel> items_;
  OutlineViewClient* client_ = nullptr;
  // The fixed end of a selection that Shift extends.
  std::weak_ptr<NSObject> anchor_;
};

}  // namespace tarn
