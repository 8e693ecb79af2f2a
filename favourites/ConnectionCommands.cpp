#include "favourites/ConnectionCommands.h"

#include <utility>

#include "platform/foundation/Log.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSOperationQueue.h"

namespace tarn {

namespace {

bool isIdle(const ServerItem& server) {
  const ConnectionStatus status = server.connectionStatus();
  return status == ConnectionStatus::notConnected || status == ConnectionStatus::disConnected;
}

}  // namespace

ConnectionCommands::ConnectionCommands(std::shared_ptr<MyFavouriteItem> favourites, FavouritesTree& tree,
                                       TabKeeper& tabs, FavouritesStore& store)
    : favourites_(std::move(favourites)), tree_(tree), tabs_(tabs), store_(store) {}

std::vector<std::shared_ptr<ServerItem>> ConnectionCommands::serversToActOn(const std::string& message) const {
  std::vector<std::shared_ptr<ServerItem>> servers = tree_.selectedServers();
  for (const auto& server : servers)
    logLine(server->connectionName());
  if (servers.empty()) {
    NSAlert alert;
    alert.setAlertStyle(NSAlert::Style::informational);
    alert.setMessageText(message);
    alert.runModal();
  }
  return servers;
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
    closeConnection(server);
    if (const auto tab = tabs_.tabForServer(*server)) {
      tab->showStatus(ConnectionStatus::notConnected);
      tabs_.emptyDatabases(tab);
    }
    tree_.collapseItem(server);
    tree_.reloadItem(server);
  }
}

void ConnectionCommands::clickRemoveSelectedConnections() {
  for (const auto& server : serversToActOn(
           localizedString("To Remove Selected Connection, you should choose one or more than one connection(s) In "
                           "the 'My Favourite' list. And not db."))) {
    remove(server);
  }
  store_.saveIfChanged();
  tree_.reloadData();
}

void ConnectionCommands::remove(const std::shared_ptr<ServerItem>& server) {
  closeConnection(server);
  std::erase(favourites_->servers, server);
  tabs_.removeTabOfServer(*server);
  store_.deleteRecord(server->serverId());
}

void ConnectionCommands::expandServer(const std::shared_ptr<ServerItem>& server) {
  if (isIdle(*server)) connectIfIdle(server);
}

void ConnectionCommands::reconnect(OperationTabViewController& tab) {
  const std::shared_ptr<ServerItem> server = tab.server();
  if (!server) return;
  closeConnection(server);
  server->setConnectionStatus(ConnectionStatus::disConnected);
  connectIfIdle(server);
}

void ConnectionCommands::closeTab(OperationTabViewController& tab) {
  const TabKeeper::Tab held = tab.shared_from_this();
  const std::shared_ptr<ServerItem> server = held->server();
  if (server) closeConnection(server);
  held->showStatus(ConnectionStatus::notConnected);
  held->emptyDatabases();
  if (server) {
    tree_.collapseItem(server);
    tree_.reloadItem(server);
  }
  tabs_.removeTabOfView(held->view());
}

void ConnectionCommands::closeConnection(const std::shared_ptr<ServerItem>& server) {
  ++closings_[server->serverId()];
  server->closeConnection();
}

void ConnectionCommands::connectIfIdle(const std::shared_ptr<ServerItem>& server) {
  const std::weak_ptr<ConnectionCommands> weakThis = weak_from_this();
  const auto post = [weakThis](auto step) {
    NSOperationQueue::mainQueue().addOperationWithBlock([weakThis, step = std::move(step)] {
      if (const auto self = weakThis.lock()) step(*self);
    });
  };
  // A barrier, so that of two connects in a row the second finds the connection of the first.
  server->operationQueue().addBarrierBlock([post, server, closings = closings_[server->serverId()]] {
    if (!isIdle(*server)) return;
    post([server](ConnectionCommands& self) { self.showConnecting(server); });
    const ServerItem::Outcome outcome = server->connectToServer();
    if (outcome.ok) {
      server->loadDatabases();
      post([server, closings](ConnectionCommands& self) { self.showConnected(server, closings); });
    } else {
      post([server, closings, message = outcome.message](ConnectionCommands& self) {
        self.showDisConnected(server, closings, message);
      });
    }
  });
}

void ConnectionCommands::showConnecting(const std::shared_ptr<ServerItem>& server) {
  tree_.reloadItem(server);
  if (const auto tab = tabs_.tabForServer(*server)) {
    tab->showStatus(ConnectionStatus::connecting);
    tabs_.emptyDatabases(tab);
    tab->updateDealingQueueLabel();
  }
}

void ConnectionCommands::showConnected(const std::shared_ptr<ServerItem>& server, Closings closings) {
  if (lapses(server, closings)) return;
  tree_.reloadItem(server);
  tree_.reopenItem(server);
  if (const auto tab = tabs_.tabForServer(*server)) {
    tab->showStatus(ConnectionStatus::connected);
    tabs_.showDatabases(tab);
    tab->updateDealingQueueLabel();
  }
}

void ConnectionCommands::showDisConnected(const std::shared_ptr<ServerItem>& server, Closings closings,
                                          const std::string& message) {
  if (lapses(server, closings)) return;
  tree_.reloadItem(server);
  const auto tab = tabs_.tabForServer(*server);
  if (tab) {
    tab->showStatus(ConnectionStatus::disConnected);
    tabs_.emptyDatabases(tab);
  }
  showAlert(message);
  if (tab) tab->updateDealingQueueLabel();
}

bool ConnectionCommands::lapses(const std::shared_ptr<ServerItem>& server, Closings closings) {
  if (closings_[server->serverId()] == closings) return false;
  tree_.reloadItem(server);
  if (const auto tab = tabs_.tabForServer(*server)) {
    tab->updateStatusLabel();
    tab->updateDealingQueueLabel();
  }
  return true;
}

void ConnectionCommands::bringDatabasesUpToDate(const std::shared_ptr<ServerItem>& server, bool connected) {
  const auto tab = tabs_.tabForServer(*server);
  if (connected) {
    tree_.reopenItem(server);
  } else {
    tree_.collapseItem(server);
  }
  if (!tab) return;
  if (connected) {
    tab->showStatus(ConnectionStatus::connected);
    tabs_.showDatabases(tab);
  } else {
    tab->showStatus(ConnectionStatus::disConnected);
    tabs_.emptyDatabases(tab);
  }
  tab->updateDealingQueueLabel();
}

}  // namespace tarn
