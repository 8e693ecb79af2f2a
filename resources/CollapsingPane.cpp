#include "resources/CollapsingPane.h"

#include <QChildEvent>

#include <algorithm>

namespace tarn {

void CollapsingPane::childEvent(QChildEvent* event) {
  if (event->added()) event->child()->installEventFilter(this);
}

bool CollapsingPane::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent) {
    const auto controls = findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    setVisible(std::any_of(controls.begin(), controls.end(), [](const QWidget* control) {
      return !control->testAttribute(Qt::WA_WState_ExplicitShowHide) || !control->isHidden();
    }));
  }
  return false;
}

}  // namespace tarn
