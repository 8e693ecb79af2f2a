#pragma once

#include "platform/foundation/NSRunLoop.h"

#include <QApplication>
#include <QPointer>

#include <atomic>
#include <deque>
#include <functional>
#include <memory>

namespace tarn {

// The toolkit's application, hosting the main queue and the main run loop: sees every event before its receiver.
class ApplicationHost final : public QApplication {
public:
  ApplicationHost(int& argc, char** argv);
  ~ApplicationHost() override;

  static ApplicationHost& shared() { return *static_cast<ApplicationHost*>(QCoreApplication::instance()); }

  // Before an input event is delivered, what was posted runs; not for an event that another one's receiver passes on,
  // since posting never runs a block in place.
  bool notify(QObject* receiver, QEvent* event) override;

  // True while widgets hear from the toolkit that the focus moves.
  bool isMovingFocus() const { return focusEvents_ > 0; }

  // Runs when the change of focus under way has ended, before the code that moved the focus goes on.
  void afterFocusChange(std::function<void()> action);

protected:
  bool event(QEvent* event) override;
  void timerEvent(QTimerEvent* event) override;

private:
  void wake();
  void scheduleTimers();
  void popUpShownOrHidden(QObject* receiver, QEvent::Type type);
  void runAfterFocusChange();

  std::atomic<bool> wakePosted_ = false;
  int timer_ = 0;
  int inputLevel_ = -1;  // of the event loop whose input event is being delivered; -1: none is
  int focusEvents_ = 0;
  int openPopUps_ = 0;
  std::unique_ptr<NSRunLoop::ModalSession> popUpSession_;
  std::deque<std::function<void()>> afterFocusChange_;
};

}  // namespace tarn
