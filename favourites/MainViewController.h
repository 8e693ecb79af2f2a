#pragma once

#include "favourites/ConnectionCommands.h"
#include "favourites/Favourites.h"
#include "favourites/NewConnectionViewController.h"
#include "platform/appkit/NSMenu.h"
#include "platform/appkit/NSViewController.h"
#include "resources/MainLayout.h"
#include "wire/ServerItemHost.h"
#include "workbench/NewKeyValueTypeSelectViewController.h"
#include "workbench/WorkbenchHost.h"

#include <memory>

namespace tarn {

// The content of the main window: owns its controls, the favourites and what acts on them, and stands between the tree
// and the tabs. While it lives it is `shared`, and the host of the connections and of the tabs. Main thread only.
class MainViewController final : public NSViewController, public ServerItemHost, public WorkbenchHost {
public:
  // Reads the stored favourites and shows them. Nothing connects by itself.
  MainViewController();
  ~MainViewController() override;

  // The one that lives, or nothing.
  static MainViewController* shared();

  NSView& view() override { return layout_.window; }
  NSWindow& window() { return layout_.window; }
  // The outlets, by their names.
  MainLayout& outlets() { return layout_; }
  const std::shared_ptr<MyFavouriteItem>& myFavourite() const { return myFavourite_; }

  // Nothing if the server has no tab.
  ConnectionTabs::Tab tabForServer(const ServerItem& server) const { return tabs_.tabForServer(server); }
  void resizeAllTabs() { tabs_.resizeAllTabs(); }

  // The connection form and the dialog that picks a new key's type: at most one of each, nothing while it is closed.
  // Only a confirmed dialog stays, out of sight, for the next time.
  NewConnectionWindowController* newConnectionWindowController() { return newConnectionWindowController_.get(); }
  NewKeyValueTypeSelectWindowController* newKeyValueTypeSelectWindowController() {
    return newKeyValueTypeSelectWindowController_.get();
  }

  // What the tree's menu, the buttons and the main menu do.
  void clickNewConnection();
  void clickEditConnection();
  void clickConnect() { commands_->clickConnect(); }
  void clickCloseConnections() { commands_->clickCloseConnections(); }
  void clickRemoveSelectedConnections() { commands_->clickRemoveSelectedConnections(); }
  // Adds the five of them that act on connections, as the tree's menu and the main menu have them.
  void addConnectionItems(NSMenu& menu);
  // Closes the tab on show, as its own button does; nothing happens without one.
  void closeSelectedTab();

  // The type dialog was confirmed: an empty form of this type in the tab on show; nothing happens without one.
  void newKeyTypeChosen(ValueType type);

  // --- ServerItemHost ---------------------------------------------------------------------------------------------

  void reloadServerRow(const std::shared_ptr<ServerItem>& server) override;
  void refreshServerRow(const std::shared_ptr<ServerItem>& server) override;
  void showStatusInTab(const std::shared_ptr<ServerItem>& server) override;
  void bringDatabasesUpToDate(const std::shared_ptr<ServerItem>& server, bool connected) override;
  void showSelectedDatabase(const std::shared_ptr<ServerItem>& server) override;

  // --- WorkbenchHost ----------------------------------------------------------------------------------------------

  void closeTab(OperationTabViewController& tab) override;
  void reconnect(OperationTabViewController& tab) override;
  void openTypeDialog() override;

private:
  void viewDidLoad();
  // Shows the form that is open, or a new one.
  NewConnectionViewController& showConnectionForm(const std::string& title);

  MainLayout layout_;
  const std::shared_ptr<MyFavouriteItem> myFavourite_ = std::make_shared<MyFavouriteItem>();
  FavouritesStore store_;
  FavouritesTree tree_{layout_.serverSelection, myFavourite_};
  ConnectionTabs tabs_{layout_.mainTab, tree_};
  const Favourites favourites_{myFavourite_, store_, tree_, tabs_};
  const std::shared_ptr<ConnectionCommands> commands_ = std::make_shared<ConnectionCommands>(favourites_);
  std::shared_ptr<NewConnectionWindowController> newConnectionWindowController_;
  std::shared_ptr<NewKeyValueTypeSelectWindowController> newKeyValueTypeSelectWindowController_;
};

}  // namespace tarn
