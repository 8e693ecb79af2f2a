// How a ServerItem walks the keys of a server or of all masters of a cluster, and the members of a set or hash.

#include "codec/TextCodec.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "wire/ServerItem.h"
#include "wire/cluster/NodeAddress.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace tarn {

namespace {

constexpr std::int64_t noLimit = std::numeric_limits<std::int64_t>::max();

// Nothing if the reply tells none: an array without elements doesn't.
std::optional<Bytes> cursorOf(const ReplyResult& reply) {
  const auto* const value = reply.value ? std::get_if<Bytes>(&*reply.value) : nullptr;
  if (value == nullptr || (reply.list && reply.list->empty())) return std::nullopt;
  if (!bytesToText(value->view(), CharsetEnum::utf8)) return std::nullopt;
  return *value;
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

std::vector<Bytes> ServerItem::scanKeys(const Bytes& match, std::int64_t limit, bool singleNode) {
  const ReplyResult nodes = execute(RedisCommand::clusterNodes, {});
  if (nodes.ok && !singleNode) {
    const auto* const bytes = nodes.value ? std::get_if<Bytes>(&*nodes.value) : nullptr;
    const auto text = bytes != nullptr ? bytesToText(bytes->view(), CharsetEnum::utf8) : std::nullopt;
    return text ? scanMasters(*text, match, limit) : std::vector<Bytes>();
  }
  return scanToTheEnd(RedisCommand::scan, {"0"_bytes, "MATCH"_bytes, match, "COUNT"_bytes, "1000"_bytes}, 0, limit);
}

std::vector<Bytes> ServerItem::scanMasters(std::string_view nodes, const Bytes& match, std::int64_t limit) {
  logLine(nodes);
  const Closings began = closings();
  std::vector<Bytes> keys;
  for (const NodeAddress& address : mastersIn(nodes)) {
    const auto master = transientItem(address);
    const bool isConnected = master->connectToServer().ok;
    // Each master that is down takes five seconds; nobody waits for the keys of a connection that was closed.
    if (wasClosedSince(began)) return {};
    if (isConnected) {
      std::vector<Bytes> more = master->scanKeys(match, limit, true);
      appendUpTo(limit, keys, more.begin(), more.end());
    } else {
      const std::string port = std::to_string(address.port);
      logLine("serverItem.serverPort:::" + port + "::connect failure");
      postAlert(address.host + ":" + port + localizedString(", Connect Failure"));
    }
    master->closeConnection();
    if (isFull(keys, limit)) break;
  }
  return keys;
}

std::vector<Bytes> ServerItem::sscanAll(const Bytes& key) {
  return scanToTheEnd(RedisCommand::sscan, {key, "0"_bytes, "COUNT"_bytes, "1000"_bytes}, 1, noLimit);
}

std::vector<Bytes> ServerItem::hscanAll(const Bytes& key) {
  return scanToTheEnd(RedisCommand::hscan, {key, "0"_bytes, "COUNT"_bytes, "1000"_bytes}, 1, noLimit);
}

// Sends the command with one cursor after the other, put at `cursorAt` of the arguments, until the server says "0" or
// `limit` elements are found.
std::vector<Bytes> ServerItem::scanToTheEnd(RedisCommand command, std::vector<Bytes> args, std::size_t cursorAt,
                                            std::int64_t limit) {
  std::vector<Bytes> found;
  for (;;) {
    ReplyResult reply = execute(command, args);
    if (!reply.ok) {
      showServerError(std::move(reply.message));
      return {};
    }
    if (reply.list && reply.list->size() > 1) {
      appendUpTo(limit, found, reply.list->begin() + 1, reply.list->end());
    }
    auto cursor = cursorOf(reply);
    if (!cursor) {
      postAlert(localizedString("Can not get scan cursor from server(994)"));
      return {};
    }
    if (isFull(found, limit) || *cursor == "0"_bytes) break;
    args[cursorAt] = *std::move(cursor);
  }
  // A list of millions of keys stays for long; what it was grown by needn't.
  found.shrink_to_fit();
  return found;
}

}  // namespace tarn
