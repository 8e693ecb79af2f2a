#pragma once

#include "platform/foundation/Bytes.h"
#include "platform/foundation/NSObject.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/NSTimer.h"
#include "platform/foundation/NSUUID.h"
#include "wire/ConnectionStatus.h"
#include "wire/DbItem.h"
#include "wire/command/RedisCommand.h"
#include "wire/reply/ReplyResult.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct addrinfo;

namespace tarn {

class Socket;
class SocketCalls;
struct NodeAddress;

// One Redis server: a node of the favourites tree, the owner of one connection, of the list of the server's databases,
// and of every operation on the wire. Made with std::make_shared; the favourites own it, background blocks and tabs
// hold it.
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
    // Where not ok, the text for the user.
    std::string message;
    // closeConnection ran while the connect was under way, which is why it failed: whoever closed has shown the state
    // as it is now, so there is nothing to show and nothing to tell.
    bool closed = false;
  };

  explicit ServerItem(Life life = Life::favourite);
  // With system calls other than the system's own, which must outlive the item; what it makes for single commands and
  // nodes uses them too.
  ServerItem(Life life, SocketCalls& calls);
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
  // SELECT said; inside a transaction that a console line has opened, the one in which the next command will run.
  // `unknownDatabase` where a transaction has left it open.
  static constexpr int unknownDatabase = -1;
  int currentDbIdx() const;

  NSOperationQueue& operationQueue() { return operationQueue_; }

  // --- Connection -------------------------------------------------------------------------------------------------

  // Counts the calls of closeConnection: what began before one must not undo what it did.
  using Closings = std::uint64_t;
  Closings closings() const;

  // Resolves, connects within 5 seconds, authenticates, and has the refresh start. With a refused password the status
  // is `connected` all the same. Fails if closeConnection has run since `began` was read, which is when the user asked.
  // A database other than the first is selected before any other command gets to the new connection; where the server
  // refuses it, currentDbIdx tells.
  Outcome connectToServer() { return connectToServer(closings()); }
  Outcome connectToServer(Closings began, int database = 0);

  // Any thread, without waiting: cancels what waits in the queue, shuts the connection down, status `notConnected`, no
  // databases, no timer. A connect under way fails, and leaves the status as set here.
  void closeConnection();

  // True while there is a connection that the peer hasn't closed; takes nothing from the stream.
  bool isAlive();

  // Main queue. Starts the refresh that runs every 3.0 seconds, in place of the one that runs. A transient item has
  // none.
  void startLivenessTimer();
  // Main queue. What the timer does: has the operation queue run infoFromServer.
  void infoFromServerMain();

  // --- Commands ---------------------------------------------------------------------------------------------------

  // Sends one command and reads its reply, following cluster redirects. Shows nothing.
  ReplyResult execute(RedisCommand command, const std::vector<Bytes>& args);

  // Tree row, status label and one alert for a failed command. Any thread; it happens on the main queue, later.
  void showServerError(std::string message);

  // Main queue. Sends a line as the user typed it and answers with the text to show: the reply, or what went wrong.
  // Empty if there was nothing to send. Follows no redirect. A lost connection is made anew, on the same database. A
  // SELECT or RESET carries currentDbIdx along, and the tab is told.
  std::string executeConsoleCommand(std::string_view line);
  // True for a line that may move the connection to another database, and so may run with no block of the queue only.
  static bool mayMoveDatabase(std::string_view line);

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
  // --- Connection
  bool wasClosedSince(Closings began) const { return closings() != began; }
  bool setStatusUnlessClosed(Closings began, ConnectionStatus status);
  std::shared_ptr<Socket> socket() const;
  bool keepSocket(std::shared_ptr<Socket> socket, Closings began);
  void dropSocket();
  void loseConnection(std::optional<Closings> began);
  std::optional<Outcome> openConnection(Closings began);
  std::optional<Outcome> connectTo(const addrinfo& address, Closings began);
  std::optional<Outcome> setUpConnected(Socket& socket, Closings began);
  Outcome failedConnect(Closings began, std::optional<ConnectionStatus> status, std::string message);
  std::string withConnectionName(std::string message) const;
  void postLivenessTimer(Closings began);

  // --- Commands
  // Borrowed, so that a value of a million rows isn't copied into its command.
  using Arguments = std::span<const std::string_view>;
  ReplyResult exchange(RedisCommand command, Arguments args, std::optional<Closings> began);
  ReplyResult requestAndReply(RedisCommand command, Arguments args, std::optional<Closings> began);
  ReplyResult followRedirect(std::string_view line, RedisCommand command, Arguments args);
  std::shared_ptr<ServerItem> transientItem(const NodeAddress& address) const;
  ReplyResult executeAndShowFailure(RedisCommand command, Arguments args);
  ReplyResult executeAndShowFailure(RedisCommand command, std::initializer_list<std::string_view> args);
  std::vector<Bytes> listOf(RedisCommand command, std::initializer_list<std::string_view> args);
  bool writeThenExpire(RedisCommand command, Arguments args, std::int64_t ttl);

  // --- Console
  std::shared_ptr<Socket> sendConsoleRequest(const std::vector<std::string>& tokens);
  bool followConsoleReply(const std::vector<std::string>& tokens, ReplyType type, std::string_view text);
  void endTransaction(bool executed);
  bool selectLocked(int index);
  bool hasOpenTransaction() const;
  void showDatabaseUnless(int database);
  void reconnectFromConsole(const std::string& message, Closings began, int database);
  void renewConnection(Closings began, int database);
  void reconnectInBackground(Closings began, int database);

  // --- Discovery and scanning
  void replaceDbs(int count, Closings began);
  std::int64_t keysOfThisNode();
  std::int64_t keysOfMasters(std::string_view nodes);
  bool refreshCounts();
  void refreshRow();
  std::vector<Bytes> scanMasters(std::string_view nodes, const Bytes& match, std::int64_t limit);
  std::vector<Bytes> scanToTheEnd(RedisCommand command, std::vector<Bytes> args, std::size_t cursorAt,
                                  std::int64_t limit);

  const Life life_;
  SocketCalls& calls_;
  // How many redirects led to this item; set before it is used.
  int redirectHops_ = 0;

  // Held for one whole connect, or one whole request and reply.
  std::mutex commandLocker_;

  // All below is behind stateMutex_, which is never held over a call that waits.
  mutable std::mutex stateMutex_;
  NSUUID serverId_;
  std::string connectionName_;
  std::string serverIp_;
  int serverPort_ = 0;
  std::string auth_;
  std::string defaultCharset_;
  ConnectionStatus connectionStatus_ = ConnectionStatus::notConnected;
  std::shared_ptr<const Databases> dbs_ = std::make_shared<const Databases>();
  int currentDbIdx_ = 0;
  // Of a transaction that a console line has opened: the database before it, and whether more than its reply follows
  // its end.
  std::optional<int> databaseAtMulti_;
  bool moreAfterExec_ = false;
  std::shared_ptr<Socket> socket_;
  Closings closings_ = 0;
  std::shared_ptr<NSTimer> timer_;

  // Last, so that its blocks find the rest.
  NSOperationQueue operationQueue_{2};
};

}  // namespace tarn
