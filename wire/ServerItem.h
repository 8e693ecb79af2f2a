#pragma once

#include "platform/foundation/Mutex.h"
#include "platform/foundation/NSObject.h"
#include "platform/foundation/NSOperationQueue.h"
#include "platform/foundation/NSTimer.h"
#include "platform/foundation/NSUUID.h"
#include "wire/DbItem.h"
#include "wire/ServerRecord.h"
#include "wire/command/ServerCommands.h"
#include "wire/connection/Connection.h"
#include "wire/stream/ConnectionStatus.h"

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace tarn {

class ServerItemHost;

// One Redis server: a node of the favourites tree, and the owner of its record, its connection, the list of its
// databases and the queue on which all work with it runs. Made with std::make_shared; the favourites own it, background
// blocks and tabs hold it.
//
// Threads: the fields may be read and written on any thread. What talks to the server blocks until the reply is in and
// belongs to `operationQueue` (or, for a save, a console line and the form's test, to the main queue). Failures come
// back as results; where the text says so they have been shown to the user already, by showServerError.
class ServerItem final : public NSObject, public ServerCommands, public std::enable_shared_from_this<ServerItem> {
public:
  // An item of the tree, or one that lives for a single connect and needs no timer.
  enum class Life { favourite, transient };

  using Databases = std::vector<std::shared_ptr<DbItem>>;
  using Epoch = Connection::Epoch;
  using Outcome = Connection::Outcome;

  explicit ServerItem(Life life = Life::favourite);
  // Over streams other than plain TCP.
  ServerItem(Life life, StreamOpener opener);
  ~ServerItem() override;

  // --- The record -------------------------------------------------------------------------------------------------

  NSUUID serverId() const { return field(&ServerRecord::serverId); }
  void setServerId(const NSUUID& id) { setField(&ServerRecord::serverId, id); }
  std::string connectionName() const { return field(&ServerRecord::connectionName); }
  void setConnectionName(std::string name) { setField(&ServerRecord::connectionName, std::move(name)); }
  std::string serverIp() const { return field(&ServerRecord::serverIp); }
  void setServerIp(std::string host) { setField(&ServerRecord::serverIp, std::move(host)); }
  int serverPort() const { return field(&ServerRecord::serverPort); }
  void setServerPort(int port) { setField(&ServerRecord::serverPort, port); }
  std::string auth() const override { return field(&ServerRecord::auth); }
  void setAuth(std::string password) { setField(&ServerRecord::auth, std::move(password)); }
  std::string defaultCharset() const { return field(&ServerRecord::defaultCharset); }
  void setDefaultCharset(std::string name) { setField(&ServerRecord::defaultCharset, std::move(name)); }

  // --- Connection -------------------------------------------------------------------------------------------------

  ConnectionStatus connectionStatus() const { return connection().status(); }
  void setConnectionStatus(ConnectionStatus status) { connection().setStatus(status); }

  // The database that the connection's server-side state stands on: 0 on a new connection, then what the last
  // successful SELECT said; inside a transaction that a console line has opened, the one in which the next command will
  // run. ServerSession::unknownDatabase where a transaction has left it open.
  int currentDbIdx() const { return connection().database(); }

  NSOperationQueue& operationQueue() { return operationQueue_; }

  // Counts the calls of closeConnection: what began before one must not undo what it did.
  Epoch epoch() const { return connection().epoch(); }
  bool wasClosedSince(Epoch began) const { return connection().wasClosedSince(began); }

  // Resolves, connects within 5 seconds, authenticates, and has the refresh start. With a refused password the status
  // is `connected` all the same. Fails if closeConnection has run since `began` was read, which is when the user asked.
  // A database other than the first is selected before any other command gets to the new connection; where the server
  // refuses it, currentDbIdx shows that.
  Outcome connectToServer() { return connectToServer(epoch()); }
  Outcome connectToServer(Epoch began, int database = 0);

  // Any thread, without waiting: cancels what waits in the queue, shuts the connection down, status `notConnected`, no
  // databases, no timer. A connect under way fails, and leaves the status as set here.
  void closeConnection();

  // Main queue. The user waits no longer for what goes on: the connection is closed, and its tab and row show it.
  void giveUp();

  // The traffic of the present connection. Waits for nothing.
  ByteStream::Traffic traffic() const { return connection().traffic(); }

  // True while there is a connection that the peer hasn't closed; takes nothing from the stream.
  bool isAlive() { return connection().isAlive(); }

  // Tree row, status label and one alert for a failed command. Any thread; it happens on the main queue, later.
  void showServerError(std::string message) override { showServerError(std::move(message), {}); }
  // The same, with more to say under the message.
  void showServerError(std::string message, std::string informative);

  // --- Databases and their key counts -----------------------------------------------------------------------------

  // The list as a whole, never null; it is replaced, never changed.
  std::shared_ptr<const Databases> dbs() const;
  void setDbs(Databases dbs);

  // Asks the server for the number of its databases and makes the list anew. Shows its own failure.
  void loadDatabases();

  // Main queue. Starts the refresh of the key counts that runs every 3.0 seconds, in place of the one that runs. A
  // transient item has none.
  void startLivenessTimer();
  // Main queue. What the timer does: has the operation queue refresh the counts; silently, and only where it has
  // nothing else to do.
  void infoFromServerMain();

  // --- Console ----------------------------------------------------------------------------------------------------

  // Main queue. Sends a line as the user typed it and answers with the text to show: the reply, or what went wrong.
  // Empty if there was nothing to send. Follows no redirect. A lost connection is made anew, on the same database. A
  // line that moves the connection to another one carries currentDbIdx along, and the tab with it.
  std::string executeConsoleCommand(std::string_view line);
  // The two halves of it. Any thread may call the first, which shows nothing of where the connection stands then;
  // `movedDatabase` says that the second has that to show.
  struct ConsoleReply {
    std::string text;
    bool movedDatabase = false;
  };
  ConsoleReply replyToConsoleLine(std::string_view line);
  void showSelectedDatabase();
  // True for a line that may move the connection to another database, and so may run with no block of the queue only.
  static bool mayMoveDatabase(std::string_view line);

private:
  template <typename Field>
  Field field(Field ServerRecord::*field) const {
    const MutexLock lock(recordMutex_);
    return record_.*field;
  }
  template <typename Field>
  void setField(Field ServerRecord::*field, std::type_identity_t<Field> value) {
    const MutexLock lock(recordMutex_);
    std::swap(record_.*field, value);
  }
  ServerAddress address() const;

  // Null for an item that is in no tree.
  ServerItemHost* host() const;

  void setTimer(std::shared_ptr<NSTimer> timer);
  void showRowAndStatus();

  void replaceDbs(int count, Epoch began);
  void infoFromServer();

  bool standsElsewhere(int database) const;
  bool renewConnection(Epoch began, int database);
  void reconnectInBackground(Epoch began, int database);

  const Life life_;

  // Never held over a call that waits.
  mutable Mutex recordMutex_;
  ServerRecord record_ GUARDED_BY(recordMutex_);
  std::shared_ptr<const Databases> dbs_ GUARDED_BY(recordMutex_) = std::make_shared<const Databases>();
  std::shared_ptr<NSTimer> timer_ GUARDED_BY(recordMutex_);

  // Last, so that its blocks find the rest.
  NSOperationQueue operationQueue_{2};
};

}  // namespace tarn
