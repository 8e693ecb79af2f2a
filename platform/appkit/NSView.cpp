#include "platform/appkit/NSView.h"

#include "platform/appkit/ToolTips.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/TextFieldWidget.h"

#include <QCoreApplication>
#include <QLayout>
#include <QResizeEvent>
#include <QWidget>

namespace tarn {

namespace {

// The widget that has the keyboard in its window, or will have it when the window is active.
QWidget* focusOfWindow(const QWidget* widget) {
  return widget->window()->focusWidget();
}

QWidget* focusTarget(QWidget* widget) {
  while (QWidget* proxy = widget->focusProxy())
    widget = proxy;
  return widget;
}

// A widget that hasn't been on screen yet keeps its resize for later; it is needed now.
void layoutTree(QWidget& widget) {
  if (widget.testAttribute(Qt::WA_PendingResizeEvent)) {
    widget.setAttribute(Qt::WA_PendingResizeEvent, false);
    QResizeEvent event(widget.size(), QSize());
    QCoreApplication::sendEvent(&widget, &event);
  }
  if (QLayout* layout = widget.layout()) layout->activate();
  for (QObject* child : widget.children()) {
    auto* childWidget = qobject_cast<QWidget*>(child);
    if (childWidget && !childWidget->isWindow()) layoutTree(*childWidget);
  }
}

}  // namespace

NSView::NSView(QWidget* widget) : widget_(widget) {}

NSView::~NSView() = default;

bool NSView::isHidden() const {
  return widget_->isHidden();
}

void NSView::setHidden(bool hidden) {
  widget_->setHidden(hidden);
}

NSRect NSView::frame() const {
  const QRect rect = widget_->geometry();
  return {double(rect.x()), double(rect.y()), double(rect.width()), double(rect.height())};
}

std::string NSView::toolTip() const {
  return toUtf8(widget_->toolTip());
}

void NSView::setToolTip(std::string_view text) {
  widget_->setToolTip(toQString(text));
  makeToolTipPlain(widget_);
}

void NSView::layout() {
  layoutTree(*widget_);
}

void NSView::becomeFirstResponder() {
  QWidget* target = focusTarget(widget_);
  QWidget* before = focusOfWindow(target);
  if (before == target) return;
  // In a window without the keyboard the old control hears nothing of the change.
  auto* left = target->isActiveWindow() ? nullptr : dynamic_cast<TextInputWidget*>(before);
  target->setFocus(Qt::OtherFocusReason);
  if (left) left->editingLeft();
  if (auto* field = dynamic_cast<TextFieldWidget*>(target)) field->selectAll();
}

bool NSView::isFirstResponder() const {
  const QWidget* focus = focusOfWindow(widget_);
  return focus && (focus == focusTarget(widget_) || widget_->isAncestorOf(focus));
}

}  // namespace tarn
