#include "wire/ServerItem.h"

#include "platform/foundation/Log.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/PostToMainQueue.h"
#include "wire/ServerItemHost.h"
#include "wire/command/Discovery.h"
#include "wire/socket/TcpConnect.h"

namespace tarn {

namespace {

constexpr double refreshInterval = 3.0;

}  // namespace

ServerItem::ServerItem(Life life) : ServerItem(life, tcpOpener()) {}

ServerItem::ServerItem(Life life, StreamOpener opener) : ServerCommands(std::move(opener)), life_(life) {}

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

void ServerItem::giveUp() {
  closeConnection();
  postToMainQueue(weak_from_this(), [](ServerItem& self) { self.showRowAndStatus(); });
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

void ServerItem::showServerError(std::string message, std::string informative) {
  NSOperationQueue::mainQueue().addOperationWithBlock(
      [weak = weak_from_this(), message = std::move(message), informative = std::move(informative)] {
        if (const auto self = weak.lock()) self->showRowAndStatus();
        showAlert(message, informative);
      });
}

void ServerItem::showRowAndStatus() {
  ServerItemHost* const host = this->host();
  if (host == nullptr) return;
  host->reloadServerRow(shared_from_this());
  host->showStatusInTab(shared_from_this());
}

std::shared_ptr<const ServerItem::Databases> ServerItem::dbs() const {
  const MutexLock lock(recordMutex_);
  return dbs_;
}

void ServerItem::setDbs(Databases dbs) {
  auto list = std::make_shared<const Databases>(std::move(dbs));
  const MutexLock lock(recordMutex_);
  dbs_.swap(list);
}

void ServerItem::loadDatabases() {
  const Epoch began = epoch();
  if (const auto count = databaseCount(*this)) replaceDbs(*count, began);
}

// A list that comes in after closeConnection is dropped.
void ServerItem::replaceDbs(int count, Epoch began) {
  Databases databases;
  databases.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i)
    databases.push_back(std::make_shared<DbItem>(i, weak_from_this()));
  auto list = std::make_shared<const Databases>(std::move(databases));
  const MutexLock lock(recordMutex_);
  if (!wasClosedSince(began)) dbs_.swap(list);
}

void ServerItem::infoFromServerMain() {
  operationQueue_.addOperationWithBlock([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->infoFromServer();
  });
}

void ServerItem::infoFromServer() {
  logLine("infoFromServer:::true");
  // This very block is the one operation counted: a refresh never waits behind the user's work, nor delays it. Nor does
  // it add commands to a transaction of the user's.
  if (operationQueue_.operationCount() != 1 || connection().hasOpenTransaction()) return;
  const Epoch began = epoch();
  const auto counts = keyCounts(*this);
  if (!counts || wasClosedSince(began)) return;
  const auto databases = dbs();
  for (const auto& database : *databases) {
    const auto found = counts->find(database->dbName());
    database->setKeysCount("(" + (found == counts->end() ? "0" : found->second) + ")");
  }
  postToMainQueue(weak_from_this(), [](ServerItem& self) {
    if (ServerItemHost* const host = self.host()) host->refreshServerRow(self.shared_from_this());
  });
}

}  // namespace tarn
