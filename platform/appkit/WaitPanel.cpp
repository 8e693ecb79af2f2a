#include "platform/appkit/WaitPanel.h"

#include "platform/appkit/NSApplication.h"
#include "platform/appkit/Utf8.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/NSRunLoop.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace tarn {

namespace {

constexpr std::chrono::seconds silence{1};
constexpr int progressInterval = 200;  // milliseconds
constexpr int waitTextWidth = 420;

class WaitPanel final : public QDialog {
public:
  WaitPanel(const AwaitedWork& work, QWidget* parent) : QDialog(parent), work_(work), progress_(new QLabel(this)) {
    setObjectName(QStringLiteral("wait"));
    setWindowModality(Qt::ApplicationModal);
    setWindowTitle(QStringLiteral("Tarn"));
    setAccessibleName(toQString(work.message));

    auto* message = new QLabel(this);
    message->setTextFormat(Qt::PlainText);
    message->setFixedWidth(waitTextWidth);
    message->setText(message->fontMetrics().elidedText(toQString(work.message), Qt::ElideRight, waitTextWidth));
    progress_->setTextFormat(Qt::PlainText);
    progress_->setFixedWidth(waitTextWidth);

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(24, 24, 24, 16);
    all->setSpacing(8);
    all->addWidget(message);
    all->addWidget(progress_);
    all->addSpacing(16);
    all->addWidget(makeButton(), 0, Qt::AlignRight);
    all->setSizeConstraint(QLayout::SetFixedSize);

    // A key that was meant for another window must not press the button.
    setFocusPolicy(Qt::StrongFocus);
    setFocus();
    showProgress();
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, [this] { showProgress(); });
    timer->start(progressInterval);
  }

  // Neither Escape nor the window's own button ends the work.
  void reject() override {}

private:
  QPushButton* makeButton() {
    auto* button = new QPushButton(literalTitle(localizedString("Give Up")), this);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, button] {
      button->setEnabled(false);
      work_.giveUp();
    });
    return button;
  }

  void showProgress() { progress_->setText(toQString(work_.progress())); }

  const AwaitedWork& work_;
  QLabel* progress_;
};

// Work on a thread of its own, of which the main thread awaits the end.
class AwaitedThread final {
public:
  explicit AwaitedThread(const std::function<void()>& work)
      : thread_([this, &work] {
          work();
          end();
        }) {}
  ~AwaitedThread() { thread_.join(); }

  // True if it has ended by then.
  bool endsWithin(std::chrono::seconds time) {
    std::unique_lock lock(mutex_);
    return ended_.wait_for(lock, time, [this] { return hasEnded_; });
  }

  // Handles events until it has ended.
  void handleEventsToTheEnd() {
    while (!endsWithin(std::chrono::seconds(0)))
      events_.exec();
  }

private:
  void end() {
    {
      const std::lock_guard lock(mutex_);
      hasEnded_ = true;
      ended_.notify_one();
    }
    QMetaObject::invokeMethod(&events_, &QEventLoop::quit, Qt::QueuedConnection);
  }

  QEventLoop events_;
  std::mutex mutex_;
  std::condition_variable ended_;
  bool hasEnded_ = false;
  // Last, since it uses the rest.
  std::thread thread_;
};

}  // namespace

void performAwaited(const std::function<void()>& work, const AwaitedWork& about) {
  const WaitCursor cursor;
  AwaitedThread thread(work);
  if (thread.endsWithin(silence)) return;
  const MainQueue::Hold hold(NSOperationQueue::mainQueue());
  const NSRunLoop::ModalSession session;
  const QPointer<QWidget> behind = QApplication::activeWindow();
  WaitPanel panel(about, behind);
  panel.show();
  thread.handleEventsToTheEnd();
  panel.hide();
  // Not every desktop gives the keyboard back by itself.
  if (behind) behind->activateWindow();
}

}  // namespace tarn
