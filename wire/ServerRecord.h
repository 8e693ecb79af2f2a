#pragma once

#include "platform/foundation/NSUUID.h"
#include "wire/DbItem.h"

#include <memory>
#include <string>
#include <vector>

namespace tarn {

// What the user has stored about a server, and the databases that it has told. A plain value.
struct ServerRecord {
  using Databases = std::vector<std::shared_ptr<DbItem>>;

  NSUUID serverId;
  std::string connectionName;
  std::string serverIp;
  int serverPort = 0;
  std::string auth;
  std::string defaultCharset;
  // Never null; the list is replaced as a whole, never changed.
  std::shared_ptr<const Databases> dbs = std::make_shared<const Databases>();
};

}  // namespace tarn
