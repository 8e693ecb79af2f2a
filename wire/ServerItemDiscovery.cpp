// How a ServerItem finds out what the server holds: its databases, and the number of keys in each.

#include "codec/TextCodec.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "wire/DecimalNumber.h"
#include "wire/Keyspace.h"
#include "wire/ServerItem.h"
#include "wire/ServerItemHost.h"
#include "wire/cluster/NodeAddress.h"

#include <algorithm>
#include <limits>
#include <string>
#include <unordered_map>

namespace tarn {

namespace {

// No server has more; a larger number is a reply gone wrong, and a list for it would fill the memory.
constexpr std::int64_t maxDatabases = 1'000'000;

std::optional<std::string> textOf(const ReplyResult& reply) {
  const auto* const bytes = reply.value ? std::get_if<Bytes>(&*reply.value) : nullptr;
  return bytes != nullptr ? bytesToText(bytes->view(), CharsetEnum::utf8) : std::nullopt;
}

std::int64_t sumWithoutOverflow(std::int64_t sum, std::int64_t more) {
  return more > std::numeric_limits<std::int64_t>::max() - sum ? std::numeric_limits<std::int64_t>::max() : sum + more;
}

}  // namespace

void ServerItem::loadDatabases() {
  const Closings began = closings();
  const ReplyResult reply = executeAndShowFailure(RedisCommand::config, {"get", "databases"});
  if (!reply.ok) return;
  if (!reply.list) return postAlert(localizedString("Can not cover database count string to Int(907)"));
  if (reply.list->size() < 2) return postAlert(localizedString("Can not cover database count string to Int(915)"));
  const auto text = bytesToText((*reply.list)[1].view(), CharsetEnum::utf8);
  if (!text) return postAlert(localizedString("Can not cover database count string to Int(940)"));
  const auto count = decimalInteger(*text);
  if (!count || *count < 0 || *count > maxDatabases) {
    return postAlert(localizedString("Can not cover database count string to Int(933)"));
  }
  replaceDbs(static_cast<int>(*count), began);
}

// A list that comes in after closeConnection is dropped.
void ServerItem::replaceDbs(int count, Closings began) {
  Databases databases;
  databases.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i)
    databases.push_back(std::make_shared<DbItem>(i, weak_from_this()));
  auto list = std::make_shared<const Databases>(std::move(databases));
  const std::lock_guard lock(stateMutex_);
  if (closings_ == began) dbs_.swap(list);
}

void ServerItem::infoFromServerMain() {
  operationQueue_.addOperationWithBlock([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->infoFromServer(true);
  });
}

std::int64_t ServerItem::infoFromServer(bool topLevel) {
  logLine(topLevel ? "infoFromServer:::true" : "infoFromServer:::false");
  // This very block is the one operation counted: a refresh never waits behind the user's work, nor delays it. Nor does
  // it add commands to a transaction of the user's.
  if (topLevel && (operationQueue_.operationCount() != 1 || hasOpenTransaction())) return 0;

  const Closings began = closings();
  const ReplyResult nodes = execute(RedisCommand::clusterNodes, {});
  if (nodes.ok && !topLevel) return keysOfThisNode();
  if (nodes.ok) {
    const auto text = textOf(nodes);
    if (!text) return 0;
    const std::int64_t sum = keysOfMasters(*text);
    if (wasClosedSince(began)) return 0;
    if (const auto databases = dbs(); !databases->empty()) {
      databases->front()->setKeysCount("(" + std::to_string(sum) + ")");
    }
    refreshRow();
  } else if (refreshCounts()) {
    refreshRow();
  }
  return 0;
}

std::int64_t ServerItem::keysOfThisNode() {
  const ReplyResult info = execute(RedisCommand::info, {});
  const auto text = info.ok ? textOf(info) : std::nullopt;
  if (!text) return 0;
  const auto lines = keyspaceLines(*text);
  const auto first = lines.empty() ? std::nullopt : databaseKeys(lines.front());
  return first ? std::max<std::int64_t>(0, decimalInteger(first->count).value_or(0)) : 0;
}

std::int64_t ServerItem::keysOfMasters(std::string_view nodes) {
  const Closings began = closings();
  std::int64_t sum = 0;
  for (const NodeAddress& address : mastersIn(nodes)) {
    if (wasClosedSince(began)) break;
    const auto master = transientItem(address);
    if (master->connectToServer().ok) sum = sumWithoutOverflow(sum, master->infoFromServer(false));
    master->closeConnection();
  }
  return sum;
}

// False if the server didn't tell, and the counts stay as they were.
bool ServerItem::refreshCounts() {
  const ReplyResult info = execute(RedisCommand::info, {});
  if (!info.ok) return false;
  logLine("infoFromServer success:::" + info.message);
  std::unordered_map<std::string_view, std::string_view> counts;
  const auto text = textOf(info);
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
  if (life_ == Life::transient) return;
  NSOperationQueue::mainQueue().addOperationWithBlock([weak = weak_from_this()] {
    ServerItemHost* const host = ServerItemHost::installed();
    if (const auto self = weak.lock(); self && host != nullptr) host->refreshServerRow(self);
  });
}

}  // namespace tarn
