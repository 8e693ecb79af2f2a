#include "platform/appkit/NSViewController.h"

#include "platform/appkit/NSView.h"

#include <QApplication>
#include <QPointer>
#include <QWidget>

namespace tarn {

void NSViewController::commitEditing() {
  const QPointer<QWidget> focused = QApplication::focusWidget();
  const QPointer<QWidget> root = view().widget();
  if (!focused || (focused != root && !root->isAncestorOf(focused))) return;
  const QPointer<QWidget> elsewhere = focused == root ? root->window() : root.data();
  elsewhere->setFocus(Qt::OtherFocusReason);
  // The end of the edit may have moved the focus, closed the view, or put the editor of a cell away.
  if (!elsewhere || QApplication::focusWidget() != elsewhere) return;
  QWidget* next = focused;
  while (next && next != elsewhere && (!next->isVisible() || next->focusPolicy() == Qt::NoFocus)) {
    next = next->parentWidget();
  }
  if (next && next != elsewhere) next->setFocus(Qt::OtherFocusReason);
}

}  // namespace tarn
