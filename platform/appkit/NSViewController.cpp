#include "platform/appkit/NSViewController.h"

#include "platform/appkit/NSView.h"

#include <QApplication>
#include <QPointer>
#include <QWidget>

namespace tarn {

void NSViewController::commitEditing() {
  const QPointer<QWidget> focused = QApplication::focusWidget();
  const QWidget* root = view().widget();
  if (!focused || (focused != root && !root->isAncestorOf(focused))) return;
  focused->clearFocus();
  // The end of the edit may have moved the focus, or closed the view.
  if (focused && !QApplication::focusWidget()) focused->setFocus(Qt::OtherFocusReason);
}

}  // namespace tarn
