#pragma once

#include "platform/coredata/NSManagedObject.h"
#include "wire/ServerItem.h"

#include <memory>
#include <string_view>

namespace tarn {

// The stored record of one favourite, and the way between it and the live server. The link between the two is the
// serverId alone. Main thread only.
class ServerItemStorage final {
public:
  static constexpr std::string_view entityName = "ServerItemStorage";

  // `record` is one of that entity, and not null.
  explicit ServerItemStorage(std::shared_ptr<NSManagedObject> record);

  bool isRecordOf(const NSUUID& serverId) const;

  // A new server as stored, or null if the record lacks a required field.
  std::shared_ptr<ServerItem> makeServer() const;

  // All fields but the serverId.
  void takeFields(const ServerItem& server);
  void takeServerId(const ServerItem& server);

private:
  std::shared_ptr<NSManagedObject> record_;
};

}  // namespace tarn
