#pragma once

#include <functional>
#include <string>

namespace tarn {

// What is said of work that the program waits for. Main thread.
struct AwaitedWork {
  // What is awaited.
  std::string message;
  // How far it has come; asked again and again while it is shown.
  std::function<std::string()> progress;
  // Has the work end before its time.
  std::function<void()> giveUp;
};

// Does the work on a thread of its own and returns when it has ended. A wait cursor shows meanwhile, and after a second
// a panel that says how far it has come, with "Give Up". Nothing else of the program reacts until then: no block of the
// main queue runs, no timer fires, and no other window takes input. Main thread.
void performAwaited(const std::function<void()>& work, const AwaitedWork& about);

}  // namespace tarn
