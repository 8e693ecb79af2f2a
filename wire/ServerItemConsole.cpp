// How a ServerItem runs a line typed in the console, shows where that leaves the connection, and reconnects.

#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/PostToMainQueue.h"
#include "wire/ServerItem.h"
#include "wire/ServerItemHost.h"
#include "wire/console/ConsoleTokeniser.h"

namespace tarn {

bool ServerItem::mayMoveDatabase(std::string_view line) {
  const auto tokens = consoleTokens(line);
  return tokens && ServerSession::mayMoveDatabase(*tokens);
}

std::string ServerItem::executeConsoleCommand(std::string_view line) {
  ConsoleReply reply = replyToConsoleLine(line);
  if (reply.movedDatabase) showSelectedDatabase();
  return std::move(reply.text);
}

void ServerItem::showSelectedDatabase() {
  if (ServerItemHost* const host = this->host()) host->showSelectedDatabase(shared_from_this());
}

ServerItem::ConsoleReply ServerItem::replyToConsoleLine(std::string_view line) {
  const auto tokens = consoleTokens(line);
  if (!tokens) return {localizedString("Invalid Input Command")};
  if (tokens->empty()) return {};
  const Epoch began = epoch();
  const int database = currentDbIdx();
  Connection::LineReply reply = connection().executeLine(*tokens, began);
  bool movedDatabase = false;
  switch (reply.end) {
    case Connection::LineReply::End::whole:
      movedDatabase = standsElsewhere(database);
      break;
    case Connection::LineReply::End::notSent:
      operationQueue_.addBarrierBlock([weak = weak_from_this(), began, database] {
        if (const auto self = weak.lock()) self->reconnectInBackground(began, database);
      });
      return {localizedString("Connection lost.")};
    case Connection::LineReply::End::brokenOff:
      showServerError(std::move(reply.failure));
      movedDatabase = renewConnection(began, database);
      break;
    case Connection::LineReply::End::moreToCome:
      movedDatabase = renewConnection(began, database);
      break;
  }
  return {std::move(reply.text), movedDatabase};
}

// The tab has another one to show than `database`, on which the connection stood before.
bool ServerItem::standsElsewhere(int database) const {
  const int now = currentDbIdx();
  return now != database && now != ServerSession::unknownDatabase;
}

// On the thread of the line: one attempt at a new connection, on the database that the old one stood on. Nothing of the
// old line is read from it. True where it stands elsewhere all the same.
bool ServerItem::renewConnection(Epoch began, int database) {
  const Outcome outcome = connectToServer(began, database);
  if (!outcome.ok && !outcome.closed) showServerError(outcome.message);
  // The server may not have it any more. From an unknown one the next command goes to what the tab shows.
  return outcome.ok && database != ServerSession::unknownDatabase && standsElsewhere(database);
}

// On the queue, with no other block running, so that none goes on in another database in between.
void ServerItem::reconnectInBackground(Epoch began, int database) {
  // The reconnect for an earlier line may have come first.
  if (isAlive() || wasClosedSince(began)) return;
  showServerError(localizedString("Connection lost."));
  const Outcome outcome = connectToServer(began, database);
  if (outcome.ok) loadDatabases();
  if (outcome.closed) return;
  postToMainQueue(weak_from_this(), [began, ok = outcome.ok](ServerItem& self) {
    ServerItemHost* const host = self.host();
    if (host != nullptr && !self.wasClosedSince(began)) host->bringDatabasesUpToDate(self.shared_from_this(), ok);
  });
}

}  // namespace tarn
