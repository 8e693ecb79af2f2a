#pragma once

#include "platform/foundation/NSUUID.h"

#include <string>

namespace tarn {

// What the user has stored about a server. A plain value.
struct ServerRecord {
  NSUUID serverId;
  std::string connectionName;
  std::string serverIp;
  int serverPort = 0;
  std::string auth;
  std::string defaultCharset;
};

}  // namespace tarn
