#include "favourites/ConnectionCommands.h"

#include "platform/foundation/Log.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/PostToMainQueue.h"

#include <utility>

namespace tarn {

namespace {

bool isIdle(const ServerItem& server) {
  const ConnectionStatus status = server.connectionStatus();
  return status == ConnectionStatus::notConnected || status == ConnectionStatus::disConnected;
}

void showNotice(const std::string& message) {
  NSAlert alert;
  alert.setAlertStyle(NSAlert::Style::informational);
  alert.setMessageText(message);
  alert.runModal();
}

}  // namespace

ConnectionCommands::ConnectionCommands(Favourites favourites) : favourites_(std::move(favourites)) {}

std::vector<std::shared_ptr<ServerItem>> ConnectionCommands::serversToActOn(const std::string& message) const {
  std::vector<std::shared_ptr<ServerItem>> servers = favourites_.tree.selectedServers();
  for (const auto& server : servers)
    logLine(server->connectionName());
  if (servers.empty()) showNotice(message);
  return servers;
}

std::shared_ptr<ServerItem> ConnectionCommands::serverToEdit() const {
  const std::vector<std::shared_ptr<ServerItem>> servers = favourites_.tree.selectedServers();
  if (servers.size() == 1) {
    logLine(servers.front()->connectionName());
    return servers.front();
  }
  showNotice(
      localizedString("To Edit Connection, you should choose one and only one connection In the 'My Favourite' list. "
                      "And not db."));
  return nullptr;
}

void ConnectionCommands::clickConnect() {
  for (const auto& server : serversToActOn(
           localizedString("To (Re)Connect Selected Connection, you should choose one or more than one connection(s) "
                           "In the 'My Favourite' list. And not db."))) {
    connectIfIdle(server);
  }
}

void ConnectionCommands::clickCloseConnections() {
  for (const auto& server : serversToActOn(
           localizedString("To Close Selected Connection, you should choose one or more than one connection(s) In the "
                           "'My Favourite' list. And not db."))) {
    close(server);
  }
}

void ConnectionCommands::clickRemoveSelectedConnections() {
  for (const auto& server : serversToActOn(
           localizedString("To Remove Selected Connection, you should choose one or more than one connection(s) In "
                           "the 'My Favourite' list. And not db."))) {
    remove(server);
  }
  favourites_.store.saveIfChanged();
  favourites_.tree.reloadData();
}

void ConnectionCommands::remove(const std::shared_ptr<ServerItem>& server) {
  server->closeConnection();
  std::erase(favourites_.root->servers, server);
  favourites_.tabs.removeTabOfServer(*server);
  favourites_.store.deleteRecord(server->serverId());
}

void ConnectionCommands::expandServer(const std::shared_ptr<ServerItem>& server) {
  if (isIdle(*server)) connectIfIdle(server);
}

void ConnectionCommands::reconnect(OperationTabViewController& tab) {
  const std::shared_ptr<ServerItem> server = tab.server();
  if (!server) return;
  server->closeConnection();
  server->setConnectionStatus(ConnectionStatus::disConnected);
  connectIfIdle(server);
}

void ConnectionCommands::closeTab(OperationTabViewController& tab) {
  const std::shared_ptr<ServerItem> server = tab.server();
  if (!server) return;
  close(server);
  favourites_.tabs.removeTabOfServer(*server);
  favourites_.tabs.selectTreeRowOfSelectedTab();
}

void ConnectionCommands::close(const std::shared_ptr<ServerItem>& server) {
  server->closeConnection();
  if (const auto tab = favourites_.tabs.tabForServer(*server)) tab->showConnection(ConnectionStatus::notConnected);
  favourites_.tree.collapseItem(server);
  favourites_.tree.reloadItem(server);
}

void ConnectionCommands::connectIfIdle(const std::shared_ptr<ServerItem>& server) {
  const auto tab = favourites_.tabs.tabForServer(*server);
  // A barrier, so that of two connects in a row the second finds the connection of the first.
  server->operationQueue().addBarrierBlock([self = weak_from_this(), server, began = server->epoch(),
                                            work = tab ? tab->beginWork() : nullptr] {
    if (!isIdle(*server)) return;
    postToMainQueue(self, [server](ConnectionCommands& commands) { commands.showConnecting(server); });
    const ServerItem::Outcome outcome = server->connectToServer(began);
    if (outcome.ok) {
      server->loadDatabases();
      postToMainQueue(self, [server, began](ConnectionCommands& commands) { commands.showConnected(server, began); });
    } else {
      postToMainQueue(self, [server, began, message = outcome.message](ConnectionCommands& commands) {
        commands.showDisConnected(server, began, message);
      });
    }
  });
}

void ConnectionCommands::showConnecting(const std::shared_ptr<ServerItem>& server) {
  favourites_.tree.reloadItem(server);
  showInTab(server, ConnectionStatus::connecting);
}

void ConnectionCommands::showConnected(const std::shared_ptr<ServerItem>& server, ServerItem::Epoch began) {
  if (showIfClosedSince(server, began)) return;
  favourites_.tree.reloadItem(server);
  favourites_.tree.reopenItem(server);
  showInTab(server, ConnectionStatus::connected);
}

void ConnectionCommands::showDisConnected(const std::shared_ptr<ServerItem>& server, ServerItem::Epoch began,
                                          const std::string& message) {
  if (showIfClosedSince(server, began)) return;
  favourites_.tree.reloadItem(server);
  const auto tab = favourites_.tabs.tabForServer(*server);
  if (tab) tab->showConnection(ConnectionStatus::disConnected);
  showAlert(message);
  if (tab) tab->updateDealingQueueLabel();
}

bool ConnectionCommands::showIfClosedSince(const std::shared_ptr<ServerItem>& server, ServerItem::Epoch began) {
  if (!server->wasClosedSince(began)) return false;
  favourites_.tree.reloadItem(server);
  if (const auto tab = favourites_.tabs.tabForServer(*server)) {
    tab->updateStatusLabel();
    tab->updateDealingQueueLabel();
  }
  return true;
}

void ConnectionCommands::bringDatabasesUpToDate(const std::shared_ptr<ServerItem>& server, bool connected) {
  if (connected) {
    favourites_.tree.reopenItem(server);
  } else {
    favourites_.tree.collapseItem(server);
  }
  showInTab(server, connected ? ConnectionStatus::connected : ConnectionStatus::disConnected);
}

void ConnectionCommands::showInTab(const std::shared_ptr<ServerItem>& server, ConnectionStatus status) {
  const auto tab = favourites_.tabs.tabForServer(*server);
  if (!tab) return;
  tab->showConnection(status);
  tab->updateDealingQueueLabel();
}

}  // namespace tarn
