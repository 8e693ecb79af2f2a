// How a ServerItem finds out what the server holds: its databases, and the number of keys in each.

#include "platform/foundation/Log.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/PostToMainQueue.h"
#include "platform/foundation/Utf8.h"
#include "wire/DecimalNumber.h"
#include "wire/Keyspace.h"
#include "wire/ServerItem.h"
#include "wire/ServerItemHost.h"
#include "wire/cluster/ClusterNode.h"

#include <algorithm>
#include <limits>
#include <string>
#include <unordered_map>

namespace tarn {

namespace {

// No server has more; a larger number is a reply gone wrong, and a list for it would fill the memory.
constexpr std::int64_t maxDatabases = 1'000'000;

std::int64_t sumWithoutOverflow(std::int64_t sum, std::int64_t more) {
  return more > std::numeric_limits<std::int64_t>::max() - sum ? std::numeric_limits<std::int64_t>::max() : sum + more;
}

}  // namespace

void ServerItem::loadDatabases() {
  const Epoch began = epoch();
  const ReplyResult reply = executeAndShowFailure(RedisCommand::config, {"get", "databases"});
  if (!reply.ok) return;
  if (!reply.list) return postAlert(localizedString("Can not cover database count string to Int(907)"));
  if (reply.list->size() < 2) return postAlert(localizedString("Can not cover database count string to Int(915)"));
  const std::string_view text = (*reply.list)[1].view();
  if (!isValidUtf8(text)) return postAlert(localizedString("Can not cover database count string to Int(940)"));
  const auto count = decimalInteger(text);
  if (!count || *count < 0 || *count > maxDatabases) {
    return postAlert(localizedString("Can not cover database count string to Int(933)"));
  }
  replaceDbs(static_cast<int>(*count), began);
}

// A list that comes in after closeConnection is dropped.
void ServerItem::replaceDbs(int count, Epoch began) {
  Databases databases;
  databases.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i)
    databases.push_back(std::make_shared<DbItem>(i, weak_from_this()));
  auto list = std::make_shared<const Databases>(std::move(databases));
  const MutexLock lock(recordMutex_);
  if (!wasClosedSince(began)) record_.dbs.swap(list);
}

void ServerItem::infoFromServerMain() {
  operationQueue_.addOperationWithBlock([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->infoFromServer();
  });
}

void ServerItem::infoFromServer() {
  logLine("infoFromServer:::true");
  // This very block is the one operation counted: a refresh never waits behind the user's work, nor delays it. Nor does
  // it add commands to a transaction of the user's.
  if (operationQueue_.operationCount() != 1 || connection().hasOpenTransaction()) return;

  const Epoch began = epoch();
  const ReplyResult nodes = execute(RedisCommand::clusterNodes, {});
  if (!nodes.ok) {
    if (refreshCounts()) refreshRow();
    return;
  }
  const auto text = nodes.text();
  if (!text) return;
  const std::int64_t sum = keysOfMasters(*text);
  if (wasClosedSince(began)) return;
  if (const auto databases = dbs(); !databases->empty()) {
    databases->front()->setKeysCount("(" + std::to_string(sum) + ")");
  }
  refreshRow();
}

std::int64_t ServerItem::keysOfMasters(std::string_view nodes) {
  std::int64_t sum = 0;
  visitMasters(nodes, auth(), connection(), [&sum](ClusterNode& master, bool isConnected) {
    if (isConnected) sum = sumWithoutOverflow(sum, master.keyCount());
    return true;
  });
  return sum;
}

// False if the server didn't tell, and the counts stay as they were.
bool ServerItem::refreshCounts() {
  const ReplyResult info = execute(RedisCommand::info, {});
  if (!info.ok) return false;
  logLine("infoFromServer success:::" + info.message);
  std::unordered_map<std::string_view, std::string_view> counts;
  const auto text = info.text();
  for (const std::string_view line : text ? keyspaceLines(*text) : std::vector<std::string_view>()) {
    if (const auto keys = databaseKeys(line)) counts[keys->name] = keys->count;
  }
  const auto databases = dbs();
  for (const auto& database : *databases) {
    const auto found = counts.find(database->dbName());
    database->setKeysCount("(" + std::string(found == counts.end() ? "0" : found->second) + ")");
  }
  return true;
}

void ServerItem::refreshRow() {
  postToMainQueue(weak_from_this(), [](ServerItem& self) {
    if (ServerItemHost* const host = self.host()) host->refreshServerRow(self.shared_from_this());
  });
}

}  // namespace tarn
