#pragma once

#include "platform/foundation/Bytes.h"
#include "wire/connection/Connection.h"
#include "wire/reply/ReplyResult.h"
#include "wire/request/Arguments.h"
#include "wire/request/Command.h"
#include "wire/request/RedisCommand.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {

class ClusterNode;
class KeyWriting;

// What became of a value that was to be written.
struct WriteOutcome {
  bool isWritten = false;
  // The value's old key, if it had another, is on the server no more.
  bool isOldKeyGone = false;
  // Texts for the user: why something failed, and what the server holds now.
  std::string message;
  std::string whatIsLeft;
};

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
  // Each of these is nothing where it failed, even if some were found by then.
  std::optional<std::vector<Bytes>> lrangeAll(const Bytes& key);
  // Member, score, member, score.
  std::optional<std::vector<Bytes>> zrangeAll(const Bytes& key);
  std::optional<std::vector<Bytes>> sscanAll(const Bytes& key);
  // Field, value, field, value.
  std::optional<std::vector<Bytes>> hscanAll(const Bytes& key);

  // At most `limit` keys that match the glob; in a cluster those of all masters unless `singleNode`.
  std::vector<Bytes> scanKeys(const Bytes& match, std::int64_t limit, bool singleNode);

  bool deleteKey(const Bytes& key);
  // Writes a value whole, or leaves the server as it was, but where its commands can't be run as one; what is left then
  // the outcome says. Shows nothing.
  WriteOutcome write(const KeyWriting& writing);

protected:
  explicit ServerCommands(StreamOpener opener) : connection_(std::move(opener)) {}
  // Connects with the opener of the other one.
  explicit ServerCommands(const Connection& other) : connection_(other.another()) {}

  Connection& connection() { return connection_; }
  const Connection& connection() const { return connection_; }

private:
  using Found = std::optional<std::vector<Bytes>>;

  Found listOf(RedisCommand command, Arguments args);
  Connection::Transaction executeTransaction(std::span<const Command> commands);
  WriteOutcome writeOneByOne(const KeyWriting& writing);
  WriteOutcome writeThenDelete(const KeyWriting& writing);
  Found scanToTheEnd(RedisCommand command, std::vector<std::string_view> args, std::size_t cursorAt,
                     std::int64_t limit);
  std::vector<Bytes> scanMasters(std::string_view nodes, const Bytes& match, std::int64_t limit);

  Connection connection_;
};

}  // namespace tarn
