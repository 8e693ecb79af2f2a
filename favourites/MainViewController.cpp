#include "favourites/MainViewController.h"

#include <algorithm>

namespace tarn {

namespace {

MainViewController* sharedController = nullptr;

}  // namespace

MainViewController* MainViewController::shared() {
  return sharedController;
}

MainViewController::MainViewController() {
  sharedController = this;
  ServerItemHost::install(this);
  WorkbenchHost::install(this);
  viewDidLoad();
}

MainViewController::~MainViewController() {
  WorkbenchHost::install(nullptr);
  ServerItemHost::install(nullptr);
  sharedController = nullptr;
}

void MainViewController::viewDidLoad() {
  tree_.buildFavouriteMenu({.connect = [this] { clickConnect(); },
                            .close = [this] { clickCloseConnections(); },
                            .remove = [this] { clickRemoveSelectedConnections(); }});
  myFavourite_->servers = store_.loadFavourites();
  tree_.show({.openTabForItem = [this](const NSItem& item) { tabs_.openTabForItem(item); },
              .expandServer = [this](const std::shared_ptr<ServerItem>& server) { commands_->expandServer(server); }});
  layout_.btnConn.setAction([this] { clickConnect(); });
  layout_.btnClose.setAction([this] { clickCloseConnections(); });
  layout_.btnRem.setAction([this] { clickRemoveSelectedConnections(); });
}

void MainViewController::closeSelectedTab() {
  if (const auto tab = tabs_.selectedTab()) closeTab(*tab);
}

void MainViewController::reloadServerRow(const std::shared_ptr<ServerItem>& server) {
  tree_.reloadItem(server);
}

void MainViewController::refreshServerRow(const std::shared_ptr<ServerItem>& server) {
  const auto& servers = myFavourite_->servers;
  if (std::find(servers.begin(), servers.end(), server) != servers.end()) tree_.refreshServerRow(server);
}

void MainViewController::showStatusInTab(const std::shared_ptr<ServerItem>& server) {
  if (const auto tab = tabForServer(*server)) tab->updateStatusLabel();
}

void MainViewController::bringDatabasesUpToDate(const std::shared_ptr<ServerItem>& server, bool connected) {
  commands_->bringDatabasesUpToDate(server, connected);
}

void MainViewController::showSelectedDatabase(const std::shared_ptr<ServerItem>& server) {
  if (const auto tab = tabForServer(*server)) tab->selectDatabase(server->currentDbIdx());
}

void MainViewController::closeTab(OperationTabViewController& tab) {
  commands_->closeTab(tab);
}

void MainViewController::reconnect(OperationTabViewController& tab) {
  commands_->reconnect(tab);
}

// The dialog isn't there yet, and the button that asks for it is hidden.
void MainViewController::openTypeDialog() {}

}  // namespace tarn
