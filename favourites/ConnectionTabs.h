#pragma once

#include "favourites/FavouritesTree.h"
#include "favourites/NSTabViewItemExtension.h"
#include "platform/appkit/NSTabView.h"
#include "platform/foundation/NSUUID.h"
#include "wire/ServerItem.h"
#include "workbench/OperationTabViewController.h"

#include <map>
#include <memory>

namespace tarn {

// The tabs on the right: at most one for each server, found by its serverId. Main thread only.
class ConnectionTabs final {
public:
  using Tab = std::shared_ptr<OperationTabViewController>;

  // Both outlive the tabs.
  ConnectionTabs(NSTabView& mainTab, FavouritesTree& tree);
  ConnectionTabs(const ConnectionTabs&) = delete;
  ConnectionTabs& operator=(const ConnectionTabs&) = delete;

  // Nothing if the server has no tab.
  Tab tabForServer(const ServerItem& server) const;
  // Nothing if there is no tab at all.
  Tab selectedTab() const;

  // Shows the tab of the server, or of the database's server; makes it if there is none. A database is then shown and
  // selected in it.
  void openTabForItem(const NSItem& item);

  // Takes the server's tab away, if it has one. If it was selected, the tab that moves to its index is selected, or
  // else the last one. The tab's controller lives on until the current event has been handled.
  void removeTabOfServer(const ServerItem& server);
  // Selects the row of the selected tab's server in the tree, if there is a tab.
  void selectTreeRowOfSelectedTab();

  // The server was edited: its tab, if it has one, takes the new name, and its form starts anew.
  void showEditedServer(const ServerItem& server);

  // Each tab lays itself out, a moment later.
  void resizeAllTabs();

private:
  void makeServerTab(const std::shared_ptr<ServerItem>& server, const DbItem* database);

  NSTabView& mainTab_;
  FavouritesTree& tree_;
  std::map<NSUUID, std::shared_ptr<NSTabViewItemExtension>> allTabs_;
};

}  // namespace tarn
