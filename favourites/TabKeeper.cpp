#include "favourites/TabKeeper.h"

#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSOperationQueue.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tarn {

namespace {

TabKeeper::Tab controllerOf(const std::shared_ptr<NSTabViewItem>& item) {
  return item ? std::dynamic_pointer_cast<OperationTabViewController>(item->viewController()) : nullptr;
}

std::string serverNameText(const ServerItem& server) {
  return localizedString("Name:") + server.connectionName() + " " + localizedString("Server:") + server.serverIp() +
         " " + localizedString("Port:") + std::to_string(server.serverPort());
}

}  // namespace

TabKeeper::TabKeeper(NSTabView& mainTab, FavouritesTree& tree) : mainTab_(mainTab), tree_(tree) {}

TabKeeper::Tab TabKeeper::tabForServer(const ServerItem& server) const {
  const auto found = allTabs_.find(server.serverId().uuidString());
  return found == allTabs_.end() ? nullptr : controllerOf(found->second);
}

TabKeeper::Tab TabKeeper::selectedTab() const {
  return controllerOf(mainTab_.selectedTabViewItem());
}

void TabKeeper::openTabForItem(const NSItem& item) {
  const auto database = std::dynamic_pointer_cast<DbItem>(item);
  const auto server = database ? database->parent() : std::dynamic_pointer_cast<ServerItem>(item);
  if (!server) return;

  const auto found = allTabs_.find(server->serverId().uuidString());
  if (found == allTabs_.end()) {
    makeServerTab(server, database.get());
    return;
  }
  mainTab_.selectTabViewItem(found->second);
  const Tab tab = controllerOf(found->second);
  if (database && tab) tab->switchDatabase(database->dbIdx());
}

void TabKeeper::makeServerTab(const std::shared_ptr<ServerItem>& server, const DbItem* database) {
  const auto tab = std::make_shared<OperationTabViewController>();
  auto item = std::make_shared<NSTabViewItemExtension>();
  item->setLabel(server->connectionName());
  item->setToolTip(server->connectionName());
  item->setViewController(tab);
  mainTab_.addTabViewItem(item);
  mainTab_.selectTabViewItem(item);

  const std::string id = server->serverId().uuidString();
  allTabsToUUID_[item] = id;
  allTabs_[id] = std::move(item);

  tab->showServerName(serverNameText(*server));
  tab->open(server);
  tab->view().layout();
  tab->doResizeLater();
  if (database) tab->switchDatabase(database->dbIdx());
}

void TabKeeper::removeTabOfView(const NSView& view) {
  const std::vector<std::shared_ptr<NSTabViewItem>> items = mainTab_.tabViewItems();
  int selected = mainTab_.indexOfTabViewItem(mainTab_.selectedTabViewItem());

  std::shared_ptr<NSTabViewItem> target;
  std::vector<std::shared_ptr<NSTabViewItem>> others;
  for (const auto& item : items) {
    const auto controller = item->viewController();
    if (controller && &controller->view() == &view) {
      target = item;
    } else {
      others.push_back(item);
    }
    mainTab_.removeTabViewItem(item);
  }
  for (const auto& item : others)
    mainTab_.addTabViewItem(item);

  selected = std::min(selected, static_cast<int>(others.size()) - 1);
  if (selected >= 0) mainTab_.selectTabViewItemAtIndex(selected);
  if (target) forget(target);
  selectTreeRowOfSelectedTab();
}

void TabKeeper::removeTabOfServer(const ServerItem& server) {
  const auto found = allTabs_.find(server.serverId().uuidString());
  if (found == allTabs_.end()) return;
  const std::shared_ptr<NSTabViewItem> item = found->second;
  forget(item);
  mainTab_.removeTabViewItem(item);
}

void TabKeeper::showEditedServer(const ServerItem& server) {
  const auto found = allTabs_.find(server.serverId().uuidString());
  if (found == allTabs_.end()) return;
  const std::string name = server.connectionName();
  found->second->setLabel(name);
  found->second->setToolTip(name);
  const Tab tab = controllerOf(found->second);
  if (!tab) return;
  tab->showServerName("Name:" + name + " server:" + server.serverIp() + " port:" + std::to_string(server.serverPort()));
  tab->resetWorkbenchView();
}

void TabKeeper::forget(const std::shared_ptr<NSTabViewItem>& item) {
  const auto found = allTabsToUUID_.find(item);
  if (found == allTabsToUUID_.end()) return;
  allTabs_.erase(found->second);
  allTabsToUUID_.erase(found);
  // The tab may be closing by the click on its own button, whose handler is still running.
  NSOperationQueue::mainQueue().addOperationWithBlock([item] {});
}

void TabKeeper::selectTreeRowOfSelectedTab() {
  const Tab tab = selectedTab();
  if (tab && tab->server()) tree_.selectServerRow(tab->server());
}

void TabKeeper::resizeAllTabs() {
  for (const auto& item : mainTab_.tabViewItems()) {
    if (const Tab tab = controllerOf(item)) tab->doResizeLater();
  }
}

}  // namespace tarn
