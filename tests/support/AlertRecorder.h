#pragma once

#include "platform/foundation/NSAlert.h"

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace tarn::test {

// Stands in for the screen: while one lives every alert is recorded and answered at once, with the answers queued by
// the test or else with the first button. Main thread only.
class AlertRecorder final {
public:
  struct Shown {
    std::string message;
    std::string informative;
    int style = 0;
    std::vector<std::string> buttons;
  };

  AlertRecorder();
  AlertRecorder(const AlertRecorder&) = delete;
  AlertRecorder& operator=(const AlertRecorder&) = delete;
  ~AlertRecorder();

  // The next alert without an answer in the queue takes this one: 1000 the first button, 1001 the second.
  void answerNext(int result);
  // Runs while the next alert is up, before it is answered.
  void whileNextIsUp(std::function<void()> action);

  const std::vector<Shown>& shown() const { return shown_; }
  std::vector<std::string> messages() const;
  void clear() { shown_.clear(); }

private:
  std::vector<Shown> shown_;
  std::deque<int> answers_;
  std::deque<std::function<void()>> actions_;
  NSAlert::Presenter before_;
};

}  // namespace tarn::test
