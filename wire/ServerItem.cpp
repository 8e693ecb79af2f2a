#include "wire/ServerItem.h"

#include "platform/foundation/NSAlert.h"
#include "platform/foundation/PostToMainQueue.h"
#include "wire/ServerItemHost.h"
#include "wire/socket/SocketCalls.h"

namespace tarn {

namespace {

constexpr double refreshInterval = 3.0;

}  // namespace

ServerItem::ServerItem(Life life) : ServerItem(life, SocketCalls::system()) {}

ServerItem::ServerItem(Life life, SocketCalls& calls) : ServerCommands(calls), life_(life) {}

ServerItem::~ServerItem() {
  setTimer(nullptr);
}

ServerAddress ServerItem::address() const {
  const MutexLock lock(recordMutex_);
  return {
      .name = record_.connectionName, .host = record_.serverIp, .port = record_.serverPort, .password = record_.auth};
}

ServerItemHost* ServerItem::host() const {
  return life_ == Life::favourite ? ServerItemHost::installed() : nullptr;
}

ServerItem::Outcome ServerItem::connectToServer(Epoch began, int database) {
  Outcome outcome = connection().connect(address(), began, database);
  if (outcome.isOpen) {
    postToMainQueue(weak_from_this(), [began](ServerItem& self) {
      if (!self.wasClosedSince(began)) self.startLivenessTimer();
    });
  }
  return outcome;
}

void ServerItem::closeConnection() {
  operationQueue_.cancelAllOperations();
  connection().close();
  setDbs({});
  setTimer(nullptr);
}

void ServerItem::startLivenessTimer() {
  if (life_ == Life::transient) return;
  setTimer(NSTimer::scheduledTimerWithTimeInterval(refreshInterval, true, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->infoFromServerMain();
  }));
}

void ServerItem::setTimer(std::shared_ptr<NSTimer> timer) {
  {
    const MutexLock lock(recordMutex_);
    timer.swap(timer_);
  }
  if (timer) timer->invalidate();
}

void ServerItem::showServerError(std::string message) {
  NSOperationQueue::mainQueue().addOperationWithBlock([weak = weak_from_this(), message = std::move(message)] {
    const auto self = weak.lock();
    if (ServerItemHost* const host = self ? self->host() : nullptr) {
      host->reloadServerRow(self);
      host->showStatusInTab(self);
    }
    showAlert(message);
  });
}

}  // namespace tarn
