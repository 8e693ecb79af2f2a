#include "wire/command/Discovery.h"

#include "platform/foundation/DecimalNumber.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/Utf8.h"
#include "wire/command/ClusterNode.h"
#include "wire/command/Keyspace.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

namespace tarn {

namespace {

// No server has more; a larger number is a reply gone wrong, and a list for it would fill the memory.
constexpr std::int64_t maxDatabases = 1'000'000;

std::int64_t sumWithoutOverflow(std::int64_t sum, std::int64_t more) {
  return more > std::numeric_limits<std::int64_t>::max() - sum ? std::numeric_limits<std::int64_t>::max() : sum + more;
}

// 0 where the node doesn't say.
std::int64_t keyCount(ClusterNode& node) {
  logLine("infoFromServer:::false");
  if (!node.execute(RedisCommand::clusterNodes, {}).ok) return 0;
  const ReplyResult info = node.execute(RedisCommand::info, {});
  const auto text = info.ok ? info.text() : std::nullopt;
  if (!text) return 0;
  const auto lines = keyspaceLines(*text);
  const auto first = lines.empty() ? std::nullopt : databaseKeys(lines.front());
  return first ? std::max<std::int64_t>(0, decimalInteger(first->count).value_or(0)) : 0;
}

std::optional<KeyCounts> keyCountOfMasters(const ServerCommands& server, std::string_view nodes) {
  std::int64_t sum = 0;
  const bool isWanted = server.visitMasters(nodes, [&sum](ClusterNode& master, bool isConnected) {
    if (isConnected) sum = sumWithoutOverflow(sum, keyCount(master));
    return true;
  });
  if (!isWanted) return std::nullopt;
  return KeyCounts{{"db0", std::to_string(sum)}};
}

}  // namespace

std::optional<int> databaseCount(ServerCommands& server) {
  const auto failed = [](std::string message) {
    postAlert(std::move(message));
    return std::nullopt;
  };
  const ReplyResult reply = server.executeAndShowFailure(RedisCommand::config, {"get", "databases"});
  if (!reply.ok) return std::nullopt;
  if (!reply.list) return failed(localizedString("Can not cover database count string to Int(907)"));
  if (reply.list->size() < 2) return failed(localizedString("Can not cover database count string to Int(915)"));
  const std::string_view text = (*reply.list)[1].view();
  if (!isValidUtf8(text)) return failed(localizedString("Can not cover database count string to Int(940)"));
  const auto count = decimalInteger(text);
  if (!count || *count < 0 || *count > maxDatabases) {
    return failed(localizedString("Can not cover database count string to Int(933)"));
  }
  return static_cast<int>(*count);
}

std::optional<KeyCounts> keyCounts(ServerCommands& server) {
  const ReplyResult nodes = server.execute(RedisCommand::clusterNodes, {});
  if (nodes.ok) {
    const auto text = nodes.text();
    return text ? keyCountOfMasters(server, *text) : std::nullopt;
  }
  const ReplyResult info = server.execute(RedisCommand::info, {});
  if (!info.ok) return std::nullopt;
  logLine("infoFromServer success:::" + info.message);
  KeyCounts counts;
  const auto text = info.text();
  for (const std::string_view line : text ? keyspaceLines(*text) : std::vector<std::string_view>()) {
    if (const auto keys = databaseKeys(line)) counts[std::string(keys->name)] = keys->count;
  }
  return counts;
}

}  // namespace tarn
