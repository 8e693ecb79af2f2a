#pragma once

#include "favourites/MainViewController.h"
#include "platform/appkit/NSWindow.h"

namespace tarn {

// The main window's two rules: closing it ends the program, and a change of its size reaches every tab. Main thread
// only.
class MainWindowController final : public NSWindowDelegate {
public:
  // `content` outlives the controller.
  explicit MainWindowController(MainViewController& content);
  MainWindowController(const MainWindowController&) = delete;
  MainWindowController& operator=(const MainWindowController&) = delete;
  ~MainWindowController() override;

  void showWindow();

  // Ends the process at once, with status 0.
  bool windowShouldClose() override;
  void windowDidResize() override;

private:
  NSWindow& window_;
};

}  // namespace tarn
