#include "wire/cluster/ClusterNode.h"

#include "platform/foundation/Log.h"
#include "platform/foundation/NSAlert.h"
#include "wire/DecimalNumber.h"
#include "wire/Keyspace.h"

#include <algorithm>
#include <utility>

namespace tarn {

ClusterNode::ClusterNode(NodeAddress address, std::string password, const Connection& server)
    : ServerCommands(server), address_(std::move(address)), password_(std::move(password)) {}

bool ClusterNode::connect() {
  return connection()
      .connect({.name = {}, .host = address_.host, .port = address_.port, .password = password_}, connection().epoch())
      .ok;
}

std::int64_t ClusterNode::keyCount() {
  logLine("infoFromServer:::false");
  if (!execute(RedisCommand::clusterNodes, {}).ok) return 0;
  const ReplyResult info = execute(RedisCommand::info, {});
  const auto text = info.ok ? info.text() : std::nullopt;
  if (!text) return 0;
  const auto lines = keyspaceLines(*text);
  const auto first = lines.empty() ? std::nullopt : databaseKeys(lines.front());
  return first ? std::max<std::int64_t>(0, decimalInteger(first->count).value_or(0)) : 0;
}

void ClusterNode::showServerError(std::string message) {
  postAlert(std::move(message));
}

bool visitMasters(std::string_view nodes, const std::string& password, const Connection& server,
                  const std::function<bool(ClusterNode& master, bool isConnected)>& visit) {
  const Connection::Epoch began = server.epoch();
  for (const NodeAddress& address : mastersIn(nodes)) {
    if (server.wasClosedSince(began)) return false;
    ClusterNode master(address, password, server);
    const bool isConnected = master.connect();
    if (server.wasClosedSince(began)) return false;
    if (!visit(master, isConnected)) break;
  }
  return true;
}

}  // namespace tarn
