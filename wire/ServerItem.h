#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/foundation/Bytes.h"
#include "platform/foundation/NSObject.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/NSTimer.h"
#include "platform/foundation/NSUUID.h"
#include "wire/ConnectionStatus.h"
#include "wire/DbItem.h"
#include "wire/RedisCommand.h"
#include "wire/ReplyResult.h"

namespace tarn {

class Socket;

// One Redis server: a node of the favourites tree, the owner of one connection, of the list of the server's databases,
// and of every operation on the wire. Made with std::make_shared; the favourites own it, background blocks and tabs hold
// it.
//
// Threads: the fields may be read and written on any thread. What talks to the server blocks until the reply is in and
// belongs to `operationQueue` (or, for a save, a console line and the form's test, to the main queue); the lock inside
// keeps each request with its reply. Failures come back as results; where the text says so they have been shown to the
// user already, by showServerError.
class ServerItem final : public NSObject, public std::enable_shared_from_this<ServerItem> {
public:
  // An item of the tree, or one that lives for a single command or node and needs no timer.
  enum class Life { favourite, transient };

  using Databases = std::vector<std::shared_ptr<DbItem>>;

  struct Outcome {
    bool ok = false;
    std::string message;
  };

  explicit ServerItem(Life life = Life::favourite);
  ~ServerItem() override;

  // --- The record -------------------------------------------------------------------------------------------------

  NSUUID serverId() const;
  void setServerId(const NSUUID& id);
  std::string connectionName() const;
  void setConnectionName(std::string name);
  std::string serverIp() const;
  void setServerIp(std::string host);
  int serverPort() const;
  void setServerPort(int port);
  std::string auth() const;
  void setAuth(std::string password);
  std::string defaultCharset() const;
  void setDefaultCharset(std::string name);

  // --- State ------------------------------------------------------------------------------------------------------

  ConnectionStatus connectionStatus() const;
  void setConnectionStatus(ConnectionStatus status);

  // The list as a whole, never null; it is replaced, never changed.
  std::shared_ptr<const Databases> dbs() const;
  void setDbs(Databases dbs);

  // The database that the connection's server-side state stands on: 0 on a new socket, then what the last successful
  // SELECT said.
  int currentDbIdx() const;

  NSOperationQueue& operationQueue() { return operationQueue_; }

  // --- Connection -------------------------------------------------------------------------------------------------

  // Resolves, connects within 5 seconds an address, authenticates. With a refused password the status is `connected`
  // all the same.
  Outcome connectToServer();

  // Any thread, without waiting: cancels what waits in the queue, shuts the connection down, status `notConnected`, no
  // databases, no timer. A connect under way fails, and leaves the status as set here.
  void closeConnection();

  // True while there is a connection that the peer hasn't closed; takes nothing from the stream.
  bool isAlive();

  // Main queue. Starts the refresh that runs every 3.0 seconds, in place of the one that runs.
  void startLivenessTimer();

  // --- Commands ---------------------------------------------------------------------------------------------------

  // Sends one command and reads its reply, following cluster redirects. Shows nothing.
  ReplyResult execute(RedisCommand command, const std::vector<Bytes>& args);

  // Tree row, status label and one alert for a failed command. Any thread; it happens on the main queue, later.
  void showServerError(std::string message);

  // Each of these shows its own failure.
  void loadDatabases();
  // True if the server took it; currentDbIdx is then `index`.
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

  // The refresh of the key counts: silent, and skipped unless it is the queue's only operation. With `topLevel` false:
  // the number of keys of this one node.
  std::int64_t infoFromServer(bool topLevel);

private:
  NSOperationQueue operationQueue_{2};
};

}  // namespace tarn
