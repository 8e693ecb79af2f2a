#pragma once

#include <QtWidgets/QTreeView>

namespace tarn {

// The widget behind NSOutlineView. A layout promotes a QTreeView to it; it needs no property.
class OutlineViewWidget final : public QTreeView {
public:
  explicit OutlineViewWidget(QWidget* parent = nullptr);
  ~OutlineViewWidget() override;
};

}  // namespace tarn
