#include "favourites/ServerItemStorage.h"

#include <cstdint>
#include <utility>

namespace tarn {

ServerItemStorage::ServerItemStorage(std::shared_ptr<NSManagedObject> record) : record_(std::move(record)) {}

bool ServerItemStorage::isRecordOf(const NSUUID& serverId) const {
  return record_->uuidForKey("serverId") == serverId;
}

std::shared_ptr<ServerItem> ServerItemStorage::makeServer() const {
  const auto id = record_->uuidForKey("serverId");
  const auto name = record_->stringForKey("connectionName");
  const auto host = record_->stringForKey("serverIp");
  const auto port = record_->integerForKey("serverPort");
  const auto password = record_->stringForKey("auth");
  if (!id || !name || !host || !port || !password) return nullptr;

  auto server = std::make_shared<ServerItem>();
  server->setConnectionName(*name);
  server->setServerId(*id);
  server->setServerIp(*host);
  server->setServerPort(static_cast<int>(*port));
  server->setAuth(*password);
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
  record_->setValueForKey("serverId", server.serverId());
}

}  // namespace tarn
