#include "platform/appkit/ApplicationHost.h"

#include "platform/foundation/NSOperationQueue.h"

#include <QEvent>
#include <QThread>
#include <QTimerEvent>
#include <QWidget>

#include <algorithm>
#include <chrono>
#include <utility>

namespace tarn {

namespace {

const auto wakeEvent = static_cast<QEvent::Type>(QEvent::registerEventType());
const auto focusEndEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

bool isInput(QEvent::Type type) {
  switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::Drop:
    case QEvent::Close:
      return true;
    default:
      return false;
  }
}

bool isFocusMove(QEvent::Type type) {
  return type == QEvent::FocusAboutToChange || type == QEvent::FocusOut || type == QEvent::FocusIn;
}

}  // namespace

ApplicationHost::ApplicationHost(int& argc, char** argv) : QApplication(argc, argv) {
  setQuitOnLastWindowClosed(false);
  NSOperationQueue::mainQueue().setWaker([this] { wake(); });
  NSRunLoop::mainRunLoop().setScheduleChanged([this] { scheduleTimers(); });
  connect(this, &QApplication::focusChanged, this, [this] { runAfterFocusChange(); });
  wake();
  scheduleTimers();
}

ApplicationHost::~ApplicationHost() {
  NSOperationQueue::mainQueue().setWaker(nullptr);
  NSRunLoop::mainRunLoop().setScheduleChanged(nullptr);
}

bool ApplicationHost::notify(QObject* receiver, QEvent* event) {
  const QEvent::Type type = event->type();
  if (type == QEvent::Show || type == QEvent::Hide) popUpShownOrHidden(receiver, type);
  if (isFocusMove(type)) {
    ++focusEvents_;
    const bool result = QApplication::notify(receiver, event);
    --focusEvents_;
    return result;
  }
  const int level = thread()->loopLevel();
  if (!isInput(type) || level <= inputLevel_) return QApplication::notify(receiver, event);

  const QPointer<QObject> alive = receiver;
  NSOperationQueue::mainQueue().drain();
  if (!alive) return true;
  const int outer = std::exchange(inputLevel_, level);
  const bool result = QApplication::notify(receiver, event);
  inputLevel_ = outer;
  return result;
}

void ApplicationHost::afterFocusChange(std::function<void()> action) {
  afterFocusChange_.push_back(std::move(action));
  // A change without the toolkit's own signal has an end too.
  postEvent(this, new QEvent(focusEndEvent), Qt::HighEventPriority);
}

bool ApplicationHost::event(QEvent* event) {
  if (event->type() == wakeEvent) {
    wakePosted_ = false;
    NSOperationQueue::mainQueue().drain();
    return true;
  }
  if (event->type() == focusEndEvent) {
    runAfterFocusChange();
    return true;
  }
  return QApplication::event(event);
}

void ApplicationHost::timerEvent(QTimerEvent* event) {
  if (event->timerId() != timer_) return QApplication::timerEvent(event);
  killTimer(std::exchange(timer_, 0));
  NSRunLoop::mainRunLoop().fireTimers();
  scheduleTimers();
}

void ApplicationHost::wake() {
  if (!wakePosted_.exchange(true)) postEvent(this, new QEvent(wakeEvent), Qt::HighEventPriority);
}

void ApplicationHost::scheduleTimers() {
  if (timer_ != 0) killTimer(std::exchange(timer_, 0));
  const auto next = NSRunLoop::mainRunLoop().nextFireDate();
  if (!next) return;
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*next - NSRunLoop::Clock::now()).count();
  constexpr std::int64_t longest = std::int64_t{24} * 60 * 60 * 1000;
  timer_ = startTimer(static_cast<int>(std::clamp<std::int64_t>(wait, 0, longest)), Qt::PreciseTimer);
}

void ApplicationHost::popUpShownOrHidden(QObject* receiver, QEvent::Type type) {
  const auto* widget = qobject_cast<QWidget*>(receiver);
  if (!widget || widget->windowType() != Qt::Popup) return;
  openPopUps_ += type == QEvent::Show ? 1 : -1;
  if (openPopUps_ > 0 && !popUpSession_) popUpSession_ = std::make_unique<NSRunLoop::ModalSession>();
  if (openPopUps_ <= 0) popUpSession_.reset();
}

void ApplicationHost::runAfterFocusChange() {
  if (focusEvents_ > 0) return;
  while (!afterFocusChange_.empty()) {
    const auto action = std::move(afterFocusChange_.front());
    afterFocusChange_.pop_front();
    action();
  }
}

}  // namespace tarn
