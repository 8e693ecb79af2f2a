#pragma once

#include "platform/foundation/NSAlert.h"

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tarn::test {

// While one lives every alert is recorded and answered at once: with the next queued answer, or else the first button.
class AlertRecorder final {
public:
  struct Shown {
    std::string message;
    std::string informative;
    int style = 0;
    std::vector<std::string> buttons;
  };

  AlertRecorder()
      : before_(NSAlert::setPresenter([this](const NSAlert& alert) {
          shown_.push_back({alert.messageText(), alert.informativeText(), static_cast<int>(alert.alertStyle()),
                            alert.buttonTitles()});
          if (const auto action = next(actions_, std::function<void()>())) action();
          return next(answers_, int{NSAlert::firstButtonReturn});
        })) {}
  AlertRecorder(const AlertRecorder&) = delete;
  AlertRecorder& operator=(const AlertRecorder&) = delete;
  ~AlertRecorder() { NSAlert::setPresenter(std::move(before_)); }

  void answerNext(int result) { answers_.push_back(result); }
  // Runs while the next alert is up, before it is answered.
  void whileNextIsUp(std::function<void()> action) { actions_.push_back(std::move(action)); }

  const std::vector<Shown>& shown() const { return shown_; }
  std::vector<std::string> messages() const {
    std::vector<std::string> texts;
    for (const Shown& alert : shown_)
      texts.push_back(alert.message);
    return texts;
  }
  void clear() { shown_.clear(); }

private:
  template <typename T>
  static T next(std::deque<T>& queue, T otherwise) {
    if (queue.empty()) return otherwise;
    otherwise = std::move(queue.front());
    queue.pop_front();
    return otherwise;
  }

  std::vector<Shown> shown_;
  std::deque<int> answers_;
  std::deque<std::function<void()>> actions_;
  NSAlert::Presenter before_;
};

}  // namespace tarn::test
