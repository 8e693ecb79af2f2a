#pragma once

#include "favourites/Favourites.h"
#include "wire/ServerItem.h"

#include <memory>
#include <string>
#include <vector>

namespace tarn {

// What the user does with connections: connect, close and remove the selected ones, close and reconnect a tab; and how
// each change of status travels back to the tree and the tab. Main thread only; nothing here waits for the network. The
// blocks on a server's queue hold the commands weakly, so they are made with std::make_shared.
class ConnectionCommands final : public std::enable_shared_from_this<ConnectionCommands> {
public:
  explicit ConnectionCommands(Favourites favourites);
  ConnectionCommands(const ConnectionCommands&) = delete;
  ConnectionCommands& operator=(const ConnectionCommands&) = delete;

  // These act on the selected servers, and say so if there are none.
  void clickConnect();
  void clickCloseConnections();
  void clickRemoveSelectedConnections();

  // The selected server, logged by name; nothing, and a message, unless exactly one is selected.
  std::shared_ptr<ServerItem> serverToEdit() const;

  // The row is being opened: connects a server that is neither connected nor connecting.
  void expandServer(const std::shared_ptr<ServerItem>& server);

  void reconnect(OperationTabViewController& tab);
  void closeTab(OperationTabViewController& tab);

  // The connection was made anew, or lost, by itself.
  void bringDatabasesUpToDate(const std::shared_ptr<ServerItem>& server, bool connected);

private:
  // The selected servers, logged by name; if there are none, `message` is shown.
  std::vector<std::shared_ptr<ServerItem>> serversToActOn(const std::string& message) const;
  void connectIfIdle(const std::shared_ptr<ServerItem>& server);
  // Tab and tree stay, and show it.
  void close(const std::shared_ptr<ServerItem>& server);
  void remove(const std::shared_ptr<ServerItem>& server);

  void showConnecting(const std::shared_ptr<ServerItem>& server);
  void showConnected(const std::shared_ptr<ServerItem>& server, ServerItem::Epoch began);
  void showDisConnected(const std::shared_ptr<ServerItem>& server, ServerItem::Epoch began, const std::string& message);
  // The server's tab, if it has one, shows this status and the length of the queue.
  void showInTab(const std::shared_ptr<ServerItem>& server, ConnectionStatus status);
  // If the server was closed since the connect was asked for, row and tab show the status as it is, and the answer is
  // true.
  bool showIfClosedSince(const std::shared_ptr<ServerItem>& server, ServerItem::Epoch began);

  const Favourites favourites_;
};

}  // namespace tarn
