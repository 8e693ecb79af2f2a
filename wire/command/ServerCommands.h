#pragma once

#include "platform/foundation/Bytes.h"
#include "wire/connection/Connection.h"
#include "wire/reply/ReplyResult.h"
#include "wire/request/Arguments.h"
#include "wire/request/RedisCommand.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {

class ClusterNode;

// The commands by which the client reads and writes the keys of a server, over one connection to it. Each sends one
// request after the other and blocks until the replies are in; each shows its own failure.
//
// Threads: any may call, as the connection's lock keeps each request with its reply.
class ServerCommands {
public:
  virtual ~ServerCommands() = default;

  // The password for the other nodes of the server's cluster.
  virtual std::string auth() const = 0;
  // Shows the user why a command failed. Any thread; it happens on the main queue, later.
  virtual void showServerError(std::string message) = 0;

  // Sends one command and reads its reply, following the redirects of a cluster. Shows nothing.
  ReplyResult execute(RedisCommand command, Arguments args);
  // The same, and shows the user why it failed.
  ReplyResult executeAndShowFailure(RedisCommand command, Arguments args);

  // Connects to one master after the other of those in the text of "cluster nodes", and calls `visit` with each, also
  // where the connect failed, until that answers false. Each that is down takes five seconds; nobody waits for the rest
  // once the connection to this server is closed. False where that ended it.
  using Visit = std::function<bool(ClusterNode& master, bool isConnected)>;
  bool visitMasters(std::string_view nodes, const Visit& visit) const;

  // True if the server took it; it is then the connection's database.
  bool selectDb(int index);

  // The type's word, such as "string" or "none".
  std::pair<bool, std::string> keyType(const Bytes& key);
  // The seconds as decimal text, "-1" without expiry, "-2" without key.
  std::pair<bool, std::optional<std::string>> keyTtl(const Bytes& key);
  std::pair<bool, Bytes> getValue(const Bytes& key);
  std::vector<Bytes> lrangeAll(const Bytes& key);
  // Member, score, member, score.
  std::vector<Bytes> zrangeAll(const Bytes& key);

  std::vector<Bytes> sscanAll(const Bytes& key);
  // Field, value, field, value.
  std::vector<Bytes> hscanAll(const Bytes& key);
  // At most `limit` keys that match the glob; in a cluster those of all masters unless `singleNode`.
  std::vector<Bytes> scanKeys(const Bytes& match, std::int64_t limit, bool singleNode);

  // A ttl below 0 means no expiry.
  bool deleteKey(const Bytes& key);
  bool setValue(const Bytes& key, const Bytes& value, std::int64_t ttl);
  bool addSetMembers(const Bytes& key, const std::vector<Bytes>& members, std::int64_t ttl);
  bool pushListItems(const Bytes& key, const std::vector<Bytes>& items, std::int64_t ttl);
  bool setHashFields(const Bytes& key, const std::vector<Bytes>& fields, const std::vector<Bytes>& values,
                     std::int64_t ttl);
  bool addSortedSetMembers(const Bytes& key, const std::vector<std::string>& scores, const std::vector<Bytes>& members,
                           std::int64_t ttl);

protected:
  explicit ServerCommands(StreamOpener opener) : connection_(std::move(opener)) {}
  // Connects with the opener of the other one.
  explicit ServerCommands(const Connection& other) : connection_(other.another()) {}

  Connection& connection() { return connection_; }
  const Connection& connection() const { return connection_; }

private:
  std::vector<Bytes> listOf(RedisCommand command, Arguments args);
  bool writeThenExpire(RedisCommand command, const std::vector<std::string_view>& args, std::int64_t ttl);
  std::vector<Bytes> scanToTheEnd(RedisCommand command, std::vector<std::string_view> args, std::size_t cursorAt,
                                  std::int64_t limit);
  std::vector<Bytes> scanMasters(std::string_view nodes, const Bytes& match, std::int64_t limit);

  Connection connection_;
};

}  // namespace tarn
