#pragma once

#include "wire/cluster/NodeAddress.h"
#include "wire/command/ServerCommands.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tarn {

// Another node of a server's cluster, on a connection that ends with this. It stands in no tree: of a failure there is
// an alert and nothing else. Belongs to one thread.
class ClusterNode final : public ServerCommands {
public:
  // By the means of `server`, the connection that told of the node. It isn't connected yet.
  ClusterNode(NodeAddress address, std::string password, const Connection& server);

  bool connect();
  const NodeAddress& address() const { return address_; }

  // 0 where the node doesn't tell.
  std::int64_t keyCount();

  std::string auth() const override { return password_; }
  void showServerError(std::string message) override;

private:
  const NodeAddress address_;
  const std::string password_;
};

// Connects to one master after the other of those in the text of "cluster nodes", and calls `visit` with each, also
// where the connect failed, until that answers false. Each that is down takes five seconds; nobody waits for the rest
// once `server` is closed. False where that ended it.
bool visitMasters(std::string_view nodes, const std::string& password, const Connection& server,
                  const std::function<bool(ClusterNode& master, bool isConnected)>& visit);

}  // namespace tarn
