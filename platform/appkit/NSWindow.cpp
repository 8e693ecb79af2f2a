#include "platform/appkit/NSWindow.h"

#include "platform/appkit/MenuBuilding.h"
#include "platform/appkit/NSMenu.h"
#include "platform/appkit/Utf8.h"

#include <QCloseEvent>
#include <QMainWindow>
#include <QMenuBar>

namespace tarn {

struct NSWindow::Private final : QObject {
  NSWindowDelegate* delegate = nullptr;
  bool closingByCode = false;

  bool eventFilter(QObject*, QEvent* event) override {
    if (!delegate) return false;
    if (event->type() == QEvent::Resize) delegate->windowDidResize();
    if (event->type() == QEvent::Close && !closingByCode && !delegate->windowShouldClose()) {
      event->ignore();
      return true;
    }
    return false;
  }
};

NSWindow::NSWindow(QWidget* widget) : NSView(widget), d_(std::make_unique<Private>()) {
  widget->installEventFilter(d_.get());
}

NSWindow::~NSWindow() = default;

void NSWindow::setTitle(std::string_view title) {
  widget()->setWindowTitle(toQString(title));
}

void NSWindow::setDelegate(NSWindowDelegate* delegate) {
  d_->delegate = delegate;
}

void NSWindow::setMainMenu(std::shared_ptr<NSMenu> menu) {
  auto* window = qobject_cast<QMainWindow*>(widget());
  if (!window) return;
  auto* bar = new QMenuBar(window);
  for (const NSMenuItem& item : menu->items()) {
    if (item.submenu) bar->addMenu(makeMenu(*item.submenu, bar));
  }
  window->setMenuBar(bar);
}

void NSWindow::makeKeyAndOrderFront() {
  if (widget()->isMinimized()) widget()->setWindowState(widget()->windowState() & ~Qt::WindowMinimized);
  widget()->show();
  widget()->raise();
  widget()->activateWindow();
}

void NSWindow::close() {
  d_->closingByCode = true;
  widget()->close();
  d_->closingByCode = false;
}

}  // namespace tarn
