#include "wire/ServerItem.h"

#include "platform/foundation/NSAlert.h"
#include "wire/ServerItemHost.h"
#include "wire/cluster/NodeAddress.h"
#include "wire/socket/Socket.h"

namespace tarn {

ServerItem::ServerItem(Life life) : ServerItem(life, SocketCalls::system()) {}

ServerItem::ServerItem(Life life, SocketCalls& calls) : life_(life), calls_(calls) {}

ServerItem::~ServerItem() {
  if (timer_) timer_->invalidate();
}

NSUUID ServerItem::serverId() const {
  const std::lock_guard lock(stateMutex_);
  return serverId_;
}

void ServerItem::setServerId(const NSUUID& id) {
  const std::lock_guard lock(stateMutex_);
  serverId_ = id;
}

std::string ServerItem::connectionName() const {
  const std::lock_guard lock(stateMutex_);
  return connectionName_;
}

void ServerItem::setConnectionName(std::string name) {
  const std::lock_guard lock(stateMutex_);
  connectionName_ = std::move(name);
}

std::string ServerItem::serverIp() const {
  const std::lock_guard lock(stateMutex_);
  return serverIp_;
}

void ServerItem::setServerIp(std::string host) {
  const std::lock_guard lock(stateMutex_);
  serverIp_ = std::move(host);
}

int ServerItem::serverPort() const {
  const std::lock_guard lock(stateMutex_);
  return serverPort_;
}

void ServerItem::setServerPort(int port) {
  const std::lock_guard lock(stateMutex_);
  serverPort_ = port;
}

std::string ServerItem::auth() const {
  const std::lock_guard lock(stateMutex_);
  return auth_;
}

void ServerItem::setAuth(std::string password) {
  const std::lock_guard lock(stateMutex_);
  auth_ = std::move(password);
}

std::string ServerItem::defaultCharset() const {
  const std::lock_guard lock(stateMutex_);
  return defaultCharset_;
}

void ServerItem::setDefaultCharset(std::string name) {
  const std::lock_guard lock(stateMutex_);
  defaultCharset_ = std::move(name);
}

ConnectionStatus ServerItem::connectionStatus() const {
  const std::lock_guard lock(stateMutex_);
  return connectionStatus_;
}

void ServerItem::setConnectionStatus(ConnectionStatus status) {
  const std::lock_guard lock(stateMutex_);
  connectionStatus_ = status;
}

std::shared_ptr<const ServerItem::Databases> ServerItem::dbs() const {
  const std::lock_guard lock(stateMutex_);
  return dbs_;
}

void ServerItem::setDbs(Databases dbs) {
  auto list = std::make_shared<const Databases>(std::move(dbs));
  const std::lock_guard lock(stateMutex_);
  dbs_.swap(list);
}

int ServerItem::currentDbIdx() const {
  const std::lock_guard lock(stateMutex_);
  return currentDbIdx_;
}

std::shared_ptr<ServerItem> ServerItem::transientItem(const NodeAddress& address) const {
  auto item = std::make_shared<ServerItem>(Life::transient, calls_);
  item->setServerIp(address.host);
  item->setServerPort(address.port);
  item->setAuth(auth());
  return item;
}

void ServerItem::showServerError(std::string message) {
  NSOperationQueue::mainQueue().addOperationWithBlock([weak = weak_from_this(), message = std::move(message)] {
    ServerItemHost* const host = ServerItemHost::installed();
    if (const auto self = weak.lock(); self && host != nullptr && self->life_ == Life::favourite) {
      host->reloadServerRow(self);
      host->showStatusInTab(self);
    }
    showAlert(message);
  });
}

}  // namespace tarn
