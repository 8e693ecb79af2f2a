#include "platform/appkit/FocusChange.h"

#include <QApplication>
#include <QFocusEvent>
#include <QWidget>

namespace tarn {

bool leavesForMoment(const QFocusEvent& event) {
  switch (event.reason()) {
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
    case Qt::MenuBarFocusReason:
      return true;
    default:
      break;
  }
  // The list of a pop-up takes it without saying why.
  const QWidget* next = QApplication::focusWidget();
  return next && next->window()->windowType() == Qt::Popup;
}

bool leavesForOtherControl(const QFocusEvent& event, const QWidget& area) {
  if (leavesForMoment(event)) return false;
  const QWidget* next = QApplication::focusWidget();
  if (!next || next->window() != area.window()) return false;
  return next != &area && !area.isAncestorOf(next) && !next->isAncestorOf(&area);
}

}  // namespace tarn
