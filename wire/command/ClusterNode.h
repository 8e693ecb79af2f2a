#pragma once

#include "wire/cluster/NodeAddress.h"
#include "wire/command/ServerCommands.h"

#include <string>

namespace tarn {

// Another node of a server's cluster, on a connection that ends with this. It stands in no tree: of a failure there is
// an alert and nothing else. Belongs to one thread.
class ClusterNode final : public ServerCommands {
public:
  // With the opener of `server`, the connection on which the node was named. It isn't connected yet.
  ClusterNode(NodeAddress address, std::string password, const Connection& server);

  bool connect();
  const NodeAddress& address() const { return address_; }

  std::string auth() const override { return password_; }
  void showServerError(std::string message) override;

private:
  const NodeAddress address_;
  const std::string password_;
};

}  // namespace tarn
