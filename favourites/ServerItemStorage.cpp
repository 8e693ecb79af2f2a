#include "favourites/ServerItemStorage.h"

#include <cstdint>
#include <utility>

namespace tarn {

ServerItemStorage::ServerItemStorage(std::shared_ptr<NSManagedObject> record) : record_(std::move(record)) {}

bool ServerItemStorage::isRecordOf(const NSUUID& serverId) const {
  return record_->uuidForKey("serverId") == serverId;
}

std::shared_ptr<ServerItem> ServerItemStorage::makeServer() const {
  if (record_->missingRequiredKey()) return nullptr;
  auto server = std::make_shared<ServerItem>();
  server->setConnectionName(*record_->stringForKey("connectionName"));
  server->setServerId(*record_->uuidForKey("serverId"));
  server->setServerIp(*record_->stringForKey("serverIp"));
  server->setServerPort(static_cast<int>(*record_->integerForKey("serverPort")));
  server->setAuth(*record_->stringForKey("auth"));
  server->setDefaultCharset(record_->stringForKey("defaultCharset").value_or("utf8"));
  return server;
}

void ServerItemStorage::takeFields(const ServerItem& server) {
  record_->setValueForKey("connectionName", server.connectionName());
  record_->setValueForKey("serverIp", server.serverIp());
  record_->setValueForKey("serverPort", std::int64_t{server.serverPort()});
  record_->setValueForKey("auth", server.auth());
  record_->setValueForKey("defaultCharset", server.defaultCharset());
}

void ServerItemStorage::takeServerId(const ServerItem& server) {
  record_->setValueForKey("serverId", server.serverId().uuidString());
}

}  // namespace tarn
