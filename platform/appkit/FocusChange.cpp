#include "platform/appkit/FocusChange.h"

#include <QApplication>
#include <QFocusEvent>
#include <QWidget>

namespace tarn {

bool leavesForOtherControl(const QFocusEvent& event, const QWidget& area) {
  switch (event.reason()) {
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
    case Qt::MenuBarFocusReason:
      return false;
    default:
      break;
  }
  const QWidget* next = QApplication::focusWidget();
  if (!next || next->window() != area.window()) return false;
  return next != &area && !area.isAncestorOf(next) && !next->isAncestorOf(&area);
}

}  // namespace tarn
