#include "tests/support/AlertRecorder.h"

namespace tarn::test {

AlertRecorder::AlertRecorder() {
  before_ = NSAlert::setPresenter([this](const NSAlert& alert) {
    shown_.push_back(
        {alert.messageText(), alert.informativeText(), static_cast<int>(alert.alertStyle()), alert.buttonTitles()});
    if (!actions_.empty()) {
      const auto action = std::move(actions_.front());
      actions_.pop_front();
      action();
    }
    if (answers_.empty()) return NSAlert::firstButtonReturn;
    const int answer = answers_.front();
    answers_.pop_front();
    return answer;
  });
}

AlertRecorder::~AlertRecorder() {
  NSAlert::setPresenter(std::move(before_));
}

void AlertRecorder::answerNext(int result) {
  answers_.push_back(result);
}

void AlertRecorder::whileNextIsUp(std::function<void()> action) {
  actions_.push_back(std::move(action));
}

std::vector<std::string> AlertRecorder::messages() const {
  std::vector<std::string> texts;
  for (const Shown& alert : shown_)
    texts.push_back(alert.message);
  return texts;
}

}  // namespace tarn::test
