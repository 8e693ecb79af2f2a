#include "platform/appkit/NSApplication.h"

#include "platform/appkit/AlertPanel.h"
#include "platform/appkit/ApplicationHost.h"
#include "platform/appkit/ImageIcon.h"
#include "platform/appkit/LocalizedLayouts.h"
#include "platform/appkit/text/TextInputWidget.h"
#include "platform/foundation/NSAlert.h"

#include <QWidget>
#include <unistd.h>

#include <cstdio>

namespace tarn {

namespace {

NSApplication* running = nullptr;

}  // namespace

struct NSApplication::Private {
  Private(int& argc, char** argv) : host(argc, argv) {}

  ApplicationHost host;
  LocalizedLayouts layoutTexts;
  std::function<bool()> shouldTerminate;
};

NSApplication::NSApplication(int& argc, char** argv) : d_(std::make_unique<Private>(argc, argv)) {
  running = this;
  QApplication::setApplicationName(QStringLiteral("Tarn"));
  QApplication::setApplicationDisplayName(QStringLiteral("Tarn"));
  QApplication::setDesktopFileName(QStringLiteral("tarn"));
  QApplication::installTranslator(&d_->layoutTexts);
  NSAlert::setPresenter(runAlertPanel);
}

NSApplication::~NSApplication() {
  NSAlert::setPresenter(nullptr);
  QApplication::removeTranslator(&d_->layoutTexts);
  running = nullptr;
}

NSApplication& NSApplication::shared() {
  return *running;
}

int NSApplication::run() {
  return QApplication::exec();
}

void NSApplication::setShouldTerminate(std::function<bool()> shouldTerminate) {
  d_->shouldTerminate = std::move(shouldTerminate);
}

void NSApplication::terminate() {
  if (!d_->shouldTerminate || d_->shouldTerminate()) QApplication::exit(0);
}

void NSApplication::exitNow(int status) {
  std::fflush(nullptr);
  _exit(status);
}

void NSApplication::setApplicationIconImage(const NSImage& image) {
  QApplication::setWindowIcon(imageIcon(image));
}

bool NSApplication::sendAction(NSTextAction action) {
  auto* text = dynamic_cast<TextInputWidget*>(QApplication::focusWidget());
  if (!text) return false;
  switch (action) {
    case NSTextAction::undo:
      text->undo();
      break;
    case NSTextAction::redo:
      text->redo();
      break;
    case NSTextAction::cut:
      text->cut();
      break;
    case NSTextAction::copy:
      text->copy();
      break;
    case NSTextAction::paste:
      text->paste();
      break;
    case NSTextAction::selectAll:
      text->selectAll();
      break;
  }
  return true;
}

WaitCursor::WaitCursor() {
  QApplication::setOverrideCursor(Qt::WaitCursor);
}

WaitCursor::~WaitCursor() {
  QApplication::restoreOverrideCursor();
}

}  // namespace tarn
