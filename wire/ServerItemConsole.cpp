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
  const auto tokens = consoleTokens(line);
  if (!tokens) return localizedString("Invalid Input Command");
  if (tokens->empty()) return {};
  const Epoch began = epoch();
  const int database = currentDbIdx();
  Connection::LineReply reply = connection().executeLine(*tokens, began);
  switch (reply.end) {
    case Connection::LineReply::End::whole:
      showDatabaseUnless(database);
      break;
    case Connection::LineReply::End::notSent:
      operationQueue_.addBarrierBlock([weak = weak_from_this(), began, database] {
        if (const auto self = weak.lock()) self->reconnectInBackground(began, database);
      });
      return localizedString("Connection lost.");
    case Connection::LineReply::End::brokenOff:
      showServerError(std::move(reply.failure));
      renewConnection(began, database);
      break;
    case Connection::LineReply::End::moreToCome:
      renewConnection(began, database);
      break;
  }
  return std::move(reply.text);
}

// The tab shows where the connection stands, unless that is, as before, on `database`.
void ServerItem::showDatabaseUnless(int database) {
  const int now = currentDbIdx();
  if (now == database || now == ServerSession::unknownDatabase) return;
  if (ServerItemHost* const host = this->host()) host->showSelectedDatabase(shared_from_this());
}

// On the thread of the line: one attempt at a new connection, on the database that the old one stood on. Nothing of the
// old line is read from it.
void ServerItem::renewConnection(Epoch began, int database) {
  const Outcome outcome = connectToServer(began, database);
  if (outcome.closed) return;
  if (!outcome.ok) return showServerError(outcome.message);
  // The server may not have it any more. From an unknown one the next command goes to what the tab shows.
  if (database != ServerSession::unknownDatabase) showDatabaseUnless(database);
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
