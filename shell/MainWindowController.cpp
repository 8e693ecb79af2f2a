#include "shell/MainWindowController.h"

#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/NSTimer.h"
#include "shell/MainMenu.h"

namespace tarn {

namespace {

constexpr double secondsBehindResize = 0.1;

}  // namespace

MainWindowController::MainWindowController(MainViewController& content) : window_(content.window()) {
  window_.setMainMenu(mainMenu(content));
  window_.setDelegate(this);
}

MainWindowController::~MainWindowController() {
  window_.setDelegate(nullptr);
}

void MainWindowController::showWindow() {
  window_.makeKeyAndOrderFront();
}

bool MainWindowController::windowShouldClose() {
  NSApplication::exitNow(0);
}

void MainWindowController::windowDidResize() {
  NSTimer::scheduledTimerWithTimeInterval(secondsBehindResize, false, [] {
    NSOperationQueue::mainQueue().addOperationWithBlock([] {
      if (MainViewController* const content = MainViewController::shared()) content->resizeAllTabs();
    });
  });
}

}  // namespace tarn
