#pragma once

#include <functional>
#include <memory>

namespace tarn {

class NSImage;

// What a text under edit does on request.
enum class NSTextAction { undo, redo, cut, copy, paste, selectAll };

// The running program: the toolkit's event loop hosting the main run loop. It sees to it that posted blocks run before
// the next input event, that alerts are modal and close an open menu first, and that no timer fires while an alert is
// up or a menu is open. Installs the presenter of NSAlert. One per process, made first thing in main().
class NSApplication final {
public:
  NSApplication(int& argc, char** argv);
  NSApplication(const NSApplication&) = delete;
  NSApplication& operator=(const NSApplication&) = delete;
  ~NSApplication();

  static NSApplication& shared();

  // Runs until terminate; the result is the process's exit status.
  int run();

  // Asked by Quit; true ends the program.
  void setShouldTerminate(std::function<bool()> shouldTerminate);
  void terminate();

  // Ends the process at once with this status; running threads are left alone and no destructor runs under them.
  [[noreturn]] static void exitNow(int status);

  // What the desktop shows for the program and its windows.
  void setApplicationIconImage(const NSImage& image);

  // Sends what the Edit menu asks for to the control that has the keyboard. False if there is none that takes it.
  bool sendAction(NSTextAction action);

private:
  struct Private;
  std::unique_ptr<Private> d_;
};

// While one lives the pointer shows that the program waits.
class WaitCursor final {
public:
  WaitCursor();
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
  ~WaitCursor();
};

}  // namespace tarn
