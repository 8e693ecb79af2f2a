// How a ServerItem runs a line typed in the console, follows what the line does to the connection, and reconnects.

#include "platform/foundation/Log.h"
#include "platform/foundation/NSLocalizedString.h"
#include "wire/DecimalNumber.h"
#include "wire/ServerItem.h"
#include "wire/ServerItemHost.h"
#include "wire/command/RequestEncoder.h"
#include "wire/console/ConsoleTokeniser.h"
#include "wire/reply/ConsoleReplyReader.h"
#include "wire/socket/Socket.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace tarn {

namespace {

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
  return text;
}

// Commands to which the server goes on answering, or answers more than once.
bool leavesMoreToCome(std::string_view command) {
  constexpr std::array<std::string_view, 9> commands{"subscribe",   "psubscribe",   "ssubscribe",
                                                     "unsubscribe", "punsubscribe", "sunsubscribe",
                                                     "monitor",     "sync",         "psync"};
  return std::find(commands.begin(), commands.end(), command) != commands.end();
}

struct ConsoleReply {
  std::string text;
  std::optional<ReplyType> type;
  std::optional<std::string> failure;
};

// The reader ends with this, so that all it has read is off the stream.
ConsoleReply readConsoleReply(Socket& socket) {
  ConsoleReplyReader reader(socket);
  ConsoleReply reply;
  reply.text = reader.readReply();
  reply.type = reader.type();
  reply.failure = reader.failure();
  return reply;
}

bool wasExecuted(ReplyType type, std::string_view text) {
  return type == ReplyType::REDIS_REPLY_ARRAY && text.starts_with('\n');
}

}  // namespace

bool ServerItem::mayMoveDatabase(std::string_view line) {
  const auto tokens = consoleTokens(line);
  if (!tokens || tokens->empty()) return false;
  const std::string command = lowerCase(tokens->front());
  return command == "select" || command == "reset" || command == "exec" || command == "discard";
}

std::string ServerItem::executeConsoleCommand(std::string_view line) {
  const auto tokens = consoleTokens(line);
  if (!tokens) return localizedString("Invalid Input Command");
  if (tokens->empty()) return {};
  const Closings began = closings();
  const int database = currentDbIdx();
  ConsoleReply reply;
  bool isOver = false;
  {
    const std::lock_guard lock(commandLocker_);
    const auto socket = sendConsoleRequest(*tokens);
    if (!socket) {
      loseConnection(began);
      operationQueue_.addBarrierBlock([weak = weak_from_this(), began, database] {
        if (const auto self = weak.lock()) self->reconnectInBackground(began, database);
      });
      return localizedString("Connection lost.");
    }
    reply = readConsoleReply(*socket);
    if (reply.failure) {
      loseConnection(began);
    } else {
      isOver = followConsoleReply(*tokens, *reply.type, reply.text);
    }
    if (isOver) dropSocket();
  }
  if (reply.failure) {
    reconnectFromConsole(*reply.failure, began, database);
  } else if (isOver) {
    renewConnection(began, database);
  } else {
    showDatabaseUnless(database);
  }
  return std::move(reply.text);
}

// With the lock held. Nothing if the connection is lost.
std::shared_ptr<Socket> ServerItem::sendConsoleRequest(const std::vector<std::string>& tokens) {
  auto socket = this->socket();
  if (!socket) return nullptr;
  const std::vector<std::string_view> words(tokens.begin(), tokens.end());
  const Bytes request = encodeRequest(words);
  const bool sent = !socket->wasShutDown() && socket->sendAll(request.view());
  logLine("sendCount:::" + (sent ? std::to_string(request.size()) : "-1") +
          ":::dataCount:::" + std::to_string(request.size()));
  return sent ? socket : nullptr;
}

// With the lock held. Keeps currentDbIdx at the database in which the next command runs, or is queued to run. True if
// the connection is of no more use, since more comes on it than replies.
bool ServerItem::followConsoleReply(const std::vector<std::string>& tokens, ReplyType type, std::string_view text) {
  const std::string command = lowerCase(tokens.front());
  const bool isStatus = type == ReplyType::REDIS_REPLY_STATUS;
  const bool isDone = isStatus && text == "OK";
  const bool isQueued = isStatus && text == "QUEUED";
  if (command == "exec" || (command == "discard" && isDone)) {
    const bool executed = command == "exec" && wasExecuted(type, text);
    const bool moreToCome = moreAfterExec_ && executed;
    endTransaction(executed);
    return moreToCome;
  }
  const std::lock_guard lock(stateMutex_);
  if (leavesMoreToCome(command) && type != ReplyType::REDIS_REPLY_ERROR) {
    moreAfterExec_ = isQueued;
    return !isQueued;
  }
  if (command == "select" && tokens.size() > 1 && (isQueued || isDone)) {
    currentDbIdx_ = static_cast<int>(decimalInteger(tokens[1]).value_or(unknownDatabase));
  } else if (command == "multi" && isDone) {
    databaseAtMulti_ = currentDbIdx_;
  } else if (command == "reset" && isStatus && text == "RESET") {
    currentDbIdx_ = 0;
    databaseAtMulti_.reset();
    moreAfterExec_ = false;
  }
  return false;
}

// With the lock held.
void ServerItem::endTransaction(bool executed) {
  std::optional<int> before;
  int now = 0;
  {
    const std::lock_guard lock(stateMutex_);
    moreAfterExec_ = false;
    before = std::exchange(databaseAtMulti_, std::nullopt);
    if (before && !executed) currentDbIdx_ = *before;
    now = currentDbIdx_;
  }
  // A SELECT in the transaction may have failed when its turn came.
  if (!before || now == *before || selectLocked(now) || selectLocked(*before)) return;
  const std::lock_guard lock(stateMutex_);
  currentDbIdx_ = unknownDatabase;
}

// With the lock held.
bool ServerItem::selectLocked(int index) {
  const std::string digits = std::to_string(index);
  const std::string_view word = digits;
  if (!requestAndReply(RedisCommand::select, {&word, 1}, std::nullopt).ok) return false;
  const std::lock_guard lock(stateMutex_);
  currentDbIdx_ = index;
  return true;
}

// The tab is told where the connection stands, unless that is, as before, on `database`.
void ServerItem::showDatabaseUnless(int database) {
  const int now = currentDbIdx();
  ServerItemHost* const host = ServerItemHost::installed();
  if (now == database || now == unknownDatabase || host == nullptr || life_ == Life::transient) return;
  host->showSelectedDatabase(shared_from_this());
}

bool ServerItem::hasOpenTransaction() const {
  const std::lock_guard lock(stateMutex_);
  return databaseAtMulti_.has_value();
}

// With the lock free, on the thread of the line. One attempt; nothing of the old line is read from the new connection.
void ServerItem::reconnectFromConsole(const std::string& message, Closings began, int database) {
  showServerError(message);
  renewConnection(began, database);
}

// A new connection, on the database that the old one stood on.
void ServerItem::renewConnection(Closings began, int database) {
  const Outcome outcome = connectToServer(began, database);
  if (outcome.closed) return;
  if (!outcome.ok) return showServerError(outcome.message);
  // The server may not have it any more. From an unknown one the next command goes to what the tab shows.
  if (database != unknownDatabase) showDatabaseUnless(database);
}

// On the queue, with no other block running, so that none goes on in another database in between.
void ServerItem::reconnectInBackground(Closings began, int database) {
  // The reconnect for an earlier line may have come first.
  if (isAlive() || wasClosedSince(began)) return;
  showServerError(localizedString("Connection lost."));
  const Outcome outcome = connectToServer(began, database);
  if (outcome.ok) loadDatabases();
  if (outcome.closed) return;
  NSOperationQueue::mainQueue().addOperationWithBlock([weak = weak_from_this(), began, ok = outcome.ok] {
    ServerItemHost* const host = ServerItemHost::installed();
    const auto self = weak.lock();
    if (self && host != nullptr && !self->wasClosedSince(began)) host->bringDatabasesUpToDate(self, ok);
  });
}

}  // namespace tarn
