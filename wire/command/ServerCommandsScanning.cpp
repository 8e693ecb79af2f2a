// The commands that walk a server: its keys, those of all masters of its cluster, the members of a set or hash.

#include "platform/foundation/Log.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "wire/command/ClusterNode.h"
#include "wire/command/ServerCommands.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace tarn {

namespace {

constexpr std::int64_t noLimit = std::numeric_limits<std::int64_t>::max();

// Nothing if the reply has none: an array without elements doesn't.
std::optional<Bytes> cursorOf(const ReplyResult& reply) {
  const auto text = reply.list && reply.list->empty() ? std::nullopt : reply.text();
  return text ? std::optional(Bytes(*text)) : std::nullopt;
}

// Moves as many to the end of `found` as the limit allows.
template <typename Iterator>
void appendUpTo(std::int64_t limit, std::vector<Bytes>& found, Iterator begin, Iterator end) {
  const std::int64_t room = std::max<std::int64_t>(0, limit - static_cast<std::int64_t>(found.size()));
  const auto last = begin + std::min<std::int64_t>(room, end - begin);
  found.insert(found.end(), std::make_move_iterator(begin), std::make_move_iterator(last));
}

bool isFull(const std::vector<Bytes>& found, std::int64_t limit) {
  return static_cast<std::int64_t>(found.size()) >= limit;
}

}  // namespace

bool ServerCommands::visitMasters(std::string_view nodes, const Visit& visit) const {
  const Connection::Epoch began = connection_.epoch();
  for (const NodeAddress& address : mastersIn(nodes)) {
    if (connection_.wasClosedSince(began)) return false;
    ClusterNode master(address, auth(), connection_);
    const bool isConnected = master.connect();
    if (connection_.wasClosedSince(began)) return false;
    if (!visit(master, isConnected)) break;
  }
  return true;
}

std::vector<Bytes> ServerCommands::scanKeys(const Bytes& match, std::int64_t limit, bool singleNode) {
  const ReplyResult nodes = execute(RedisCommand::clusterNodes, {});
  if (nodes.ok && !singleNode) {
    const auto text = nodes.text();
    return text ? scanMasters(*text, match, limit) : std::vector<Bytes>();
  }
  return scanToTheEnd(RedisCommand::scan, {"0", "MATCH", match.view(), "COUNT", "1000"}, 0, limit)
      .value_or(std::vector<Bytes>());
}

std::vector<Bytes> ServerCommands::scanMasters(std::string_view nodes, const Bytes& match, std::int64_t limit) {
  logLine(nodes);
  std::vector<Bytes> keys;
  const bool isWanted = visitMasters(nodes, [&](ClusterNode& master, bool isConnected) {
    if (isConnected) {
      std::vector<Bytes> more = master.scanKeys(match, limit, true);
      appendUpTo(limit, keys, more.begin(), more.end());
    } else {
      const std::string port = std::to_string(master.address().port);
      logLine("serverItem.serverPort:::" + port + "::connect failure");
      postAlert(master.address().host + ":" + port + localizedString(", Connect Failure"));
    }
    return !isFull(keys, limit);
  });
  return isWanted ? keys : std::vector<Bytes>();
}

ServerCommands::Found ServerCommands::sscanAll(const Bytes& key) {
  return scanToTheEnd(RedisCommand::sscan, {key.view(), "0", "COUNT", "1000"}, 1, noLimit);
}

ServerCommands::Found ServerCommands::hscanAll(const Bytes& key) {
  return scanToTheEnd(RedisCommand::hscan, {key.view(), "0", "COUNT", "1000"}, 1, noLimit);
}

// Sends the command with one cursor after the other, put at `cursorAt` of the arguments, until the server says "0" or
// `limit` elements are found.
ServerCommands::Found ServerCommands::scanToTheEnd(RedisCommand command, std::vector<std::string_view> args,
                                                   std::size_t cursorAt, std::int64_t limit) {
  std::vector<Bytes> found;
  std::optional<Bytes> cursor;
  for (;;) {
    if (cursor) args[cursorAt] = cursor->view();
    ReplyResult reply = executeAndShowFailure(command, args);
    if (!reply.ok) return std::nullopt;
    if (reply.list && reply.list->size() > 1) {
      appendUpTo(limit, found, reply.list->begin() + 1, reply.list->end());
    }
    cursor = cursorOf(reply);
    if (!cursor) {
      postAlert(localizedString("Can not get scan cursor from server(994)"));
      return std::nullopt;
    }
    if (isFull(found, limit) || *cursor == "0"_bytes) break;
  }
  // A list of millions of keys stays for long; what it was grown by needn't.
  found.shrink_to_fit();
  return found;
}

}  // namespace tarn
