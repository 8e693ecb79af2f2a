#include "platform/foundation/NSAlert.h"

#include "platform/foundation/Immortal.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSOperationQueue.h"

#include <utility>

namespace tarn {

void NSAlert::setMessageText(std::string text) {
  messageText_ = std::move(text);
}

void NSAlert::setInformativeText(std::string text) {
  informativeText_ = std::move(text);
}

void NSAlert::setAlertStyle(Style style) {
  style_ = style;
}

void NSAlert::addButtonWithTitle(std::string title) {
  buttonTitles_.push_back(std::move(title));
}

int NSAlert::runModal() const {
  // A copy: the presenter may be replaced while the alert is up.
  const Presenter presenter = immortal<Presenter>();
  if (presenter) return presenter(*this);
  logLine(messageText_);
  return firstButtonReturn;
}

NSAlert::Presenter NSAlert::setPresenter(Presenter presenter) {
  return std::exchange(immortal<Presenter>(), std::move(presenter));
}

void showAlert(std::string message, std::string informative) {
  askUser(std::move(message), std::move(informative), {});
}

void postAlert(std::string message) {
  NSOperationQueue::mainQueue().addOperationWithBlock([message = std::move(message)] { showAlert(message); });
}

int askUser(std::string message, std::string informative, std::vector<std::string> buttons) {
  NSAlert alert;
  alert.setMessageText(std::move(message));
  alert.setInformativeText(std::move(informative));
  for (std::string& button : buttons)
    alert.addButtonWithTitle(std::move(button));
  return alert.runModal();
}

}  // namespace tarn
