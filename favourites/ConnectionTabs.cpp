#include "favourites/ConnectionTabs.h"

#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/PostToMainQueue.h"

#include <utility>

namespace tarn {

namespace {

ConnectionTabs::Tab controllerOf(const std::shared_ptr<NSTabViewItem>& item) {
  return item ? std::dynamic_pointer_cast<OperationTabViewController>(item->viewController()) : nullptr;
}

std::string serverNameText(const ServerItem& server) {
  return localizedString("Name:") + server.connectionName() + " " + localizedString("Server:") + server.serverIp() +
         " " + localizedString("Port:") + std::to_string(server.serverPort());
}

}  // namespace

ConnectionTabs::ConnectionTabs(NSTabView& mainTab, FavouritesTree& tree) : mainTab_(mainTab), tree_(tree) {}

ConnectionTabs::Tab ConnectionTabs::tabForServer(const ServerItem& server) const {
  const auto found = allTabs_.find(server.serverId());
  return found == allTabs_.end() ? nullptr : controllerOf(found->second);
}

ConnectionTabs::Tab ConnectionTabs::selectedTab() const {
  return controllerOf(mainTab_.selectedTabViewItem());
}

void ConnectionTabs::openTabForItem(const NSItem& item) {
  const auto database = std::dynamic_pointer_cast<DbItem>(item);
  const auto server = database ? database->parent() : std::dynamic_pointer_cast<ServerItem>(item);
  if (!server) return;

  const auto found = allTabs_.find(server->serverId());
  if (found == allTabs_.end()) {
    makeServerTab(server, database.get());
    return;
  }
  mainTab_.selectTabViewItem(found->second);
  const Tab tab = controllerOf(found->second);
  if (database && tab) tab->switchDatabase(database->dbIdx());
}

void ConnectionTabs::makeServerTab(const std::shared_ptr<ServerItem>& server, const DbItem* database) {
  const auto tab = std::make_shared<OperationTabViewController>();
  auto item = std::make_shared<NSTabViewItemExtension>();
  item->setLabel(server->connectionName());
  item->setToolTip(server->connectionName());
  item->setViewController(tab);
  mainTab_.addTabViewItem(item);
  mainTab_.selectTabViewItem(item);

  allTabs_[server->serverId()] = std::move(item);

  tab->showServerName(serverNameText(*server));
  tab->open(server);
  tab->view().layout();
  tab->doResizeLater();
  if (database) tab->switchDatabase(database->dbIdx());
}

void ConnectionTabs::removeTabOfServer(const ServerItem& server) {
  const auto found = allTabs_.find(server.serverId());
  if (found == allTabs_.end()) return;
  const std::shared_ptr<NSTabViewItem> item = found->second;
  allTabs_.erase(found);
  mainTab_.removeTabViewItem(item);
  // The tab may be closing by the click on its own button.
  releaseOnMainQueue(item);
}

void ConnectionTabs::showEditedServer(const ServerItem& server) {
  const auto found = allTabs_.find(server.serverId());
  if (found == allTabs_.end()) return;
  const std::string name = server.connectionName();
  found->second->setLabel(name);
  found->second->setToolTip(name);
  const Tab tab = controllerOf(found->second);
  if (!tab) return;
  tab->showServerName("Name:" + name + " server:" + server.serverIp() + " port:" + std::to_string(server.serverPort()));
  tab->resetWorkbenchView();
}

void ConnectionTabs::selectTreeRowOfSelectedTab() {
  const Tab tab = selectedTab();
  if (tab && tab->server()) tree_.selectServerRow(tab->server());
}

void ConnectionTabs::resizeAllTabs() {
  for (const auto& item : mainTab_.tabViewItems()) {
    if (const Tab tab = controllerOf(item)) tab->doResizeLater();
  }
}

}  // namespace tarn
