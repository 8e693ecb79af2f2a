#include "wire/command/ClusterNode.h"

#include "platform/foundation/NSAlert.h"

#include <utility>

namespace tarn {

ClusterNode::ClusterNode(NodeAddress address, std::string password, const Connection& server)
    : ServerCommands(server), address_(std::move(address)), password_(std::move(password)) {}

bool ClusterNode::connect() {
  return connection()
      .connect({.name = {}, .host = address_.host, .port = address_.port, .password = password_}, connection().epoch())
      .ok;
}

void ClusterNode::showServerError(std::string message) {
  postAlert(std::move(message));
}

}  // namespace tarn
