#pragma once

#include "favourites/FavouritesTree.h"
#include "favourites/NSTabViewItemExtension.h"
#include "platform/appkit/NSTabView.h"
#include "wire/ServerItem.h"
#include "workbench/OperationTabViewController.h"

#include <map>
#include <memory>
#include <string>

namespace tarn {

// The tabs on the right: at most one for each server, found by the text of its serverId. Main thread only.
class TabKeeper final {
public:
  using Tab = std::shared_ptr<OperationTabViewController>;

  // Both outlive the keeper.
  TabKeeper(NSTabView& mainTab, FavouritesTree& tree);
  TabKeeper(const TabKeeper&) = delete;
  TabKeeper& operator=(const TabKeeper&) = delete;

  // Nothing if the server has no tab.
  Tab tabForServer(const ServerItem& server) const;
  // Nothing if there is no tab at all.
  Tab selectedTab() const;

  // Shows the tab of the server, or of the database's server; makes it if there is none. A database is then shown and
  // selected in it.
  void openTabForItem(const NSItem& item);

  // Takes the tab that shows `view` away; the one that moves into its place is selected, in the tree too. The tab's
  // controller lives on until the current event has been handled.
  void removeTabOfView(const NSView& view);
  // Takes the server's tab away, if it has one.
  void removeTabOfServer(const ServerItem& server);

  // The server was edited: its tab, if it has one, takes the new name, and its form starts anew.
  void showEditedServer(const ServerItem& server);

  // Each tab lays itself out, a moment later.
  void resizeAllTabs();

private:
  void makeServerTab(const std::shared_ptr<ServerItem>& server, const DbItem* database);
  void forget(const std::shared_ptr<NSTabViewItem>& item);
  void selectTreeRowOfSelectedTab();

  NSTabView& mainTab_;
  FavouritesTree& tree_;
  std::map<std::string, std::shared_ptr<NSTabViewItemExtension>> allTabs_;
  std::map<std::shared_ptr<NSTabViewItem>, std::string> allTabsToUUID_;
};

}  // namespace tarn
