#include "favourites/MainViewController.h"

#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/PostToMainQueue.h"

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

MainViewController* sharedController = nullptr;

// The window may be closing by the click on one of its own buttons.
template <typename Controller>
void forget(std::shared_ptr<Controller>& controller) {
  releaseOnMainQueue(std::exchange(controller, nullptr));
}

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
  const auto menu = std::make_shared<NSMenu>(localizedString("快捷菜单"));
  addConnectionItems(*menu);
  layout_.serverSelection.setMenu(menu);
  myFavourite_->servers = store_.loadFavourites();
  tree_.show({.openTabForItem = [this](const NSItem& item) { tabs_.openTabForItem(item); },
              .expandServer = [this](const std::shared_ptr<ServerItem>& server) { commands_->expandServer(server); }});
  layout_.btnNew.setAction([this] { clickNewConnection(); });
  layout_.btnEdit.setAction([this] { clickEditConnection(); });
  layout_.btnConn.setAction([this] { clickConnect(); });
  layout_.btnClose.setAction([this] { clickCloseConnections(); });
  layout_.btnRem.setAction([this] { clickRemoveSelectedConnections(); });
}

NewConnectionViewController& MainViewController::showConnectionForm(const std::string& title) {
  if (!newConnectionWindowController_) {
    const auto willClose = [this] { forget(newConnectionWindowController_); };
    newConnectionWindowController_ = std::make_shared<NewConnectionWindowController>(
        std::make_shared<NewConnectionViewController>(
            NewConnectionViewController::Favourites{myFavourite_, store_, tree_, tabs_}, willClose),
        willClose);
  }
void MainViewController::addConnectionItems(NSMenu& menu) {
  menu.addItem(localizedString("(Re)Connect Selected Connection(s)"), [this] { clickConnect(); });
  menu.addItem(localizedString("Close Selected Connection(s)"), [this] { clickCloseConnections(); });
  menu.addItem(localizedString("Remove Selected Connection(s)"), [this] { clickRemoveSelectedConnections(); });
  menu.addItem(localizedString("Edit Connection"), [this] { clickEditConnection(); });
  menu.addItem(localizedString("New Connection"), [this] { clickNewConnection(); });
}

  newConnectionWindowController_->window().setTitle(title);
  newConnectionWindowController_->showWindow();
  return newConnectionWindowController_->form();
}

void MainViewController::clickNewConnection() {
  showConnectionForm(localizedString("Tarn - New Connection")).describeNew();
}

void MainViewController::clickEditConnection() {
  const auto server = commands_->serverToEdit();
  if (!server) return;
  showConnectionForm(localizedString("Tarn - Edit Connection")).describe(*server);
}

void MainViewController::newKeyTypeChosen(ValueType type) {
  if (const auto tab = tabs_.selectedTab()) tab->newKeyTypeChosen(type);
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
  if (const auto tab = tabForServer(*server)) tab->showDatabase(server->currentDbIdx());
}

void MainViewController::closeTab(OperationTabViewController& tab) {
  commands_->closeTab(tab);
}

void MainViewController::reconnect(OperationTabViewController& tab) {
  commands_->reconnect(tab);
}

void MainViewController::openTypeDialog() {
  if (!newKeyValueTypeSelectWindowController_) {
    const auto willClose = [this] { forget(newKeyValueTypeSelectWindowController_); };
    newKeyValueTypeSelectWindowController_ = std::make_shared<NewKeyValueTypeSelectWindowController>(
        std::make_shared<NewKeyValueTypeSelectViewController>(NewKeyValueTypeSelectViewController::Answers{
            .chosen = [this](ValueType type) { newKeyTypeChosen(type); }, .cancelled = willClose}),
        willClose);
  }
  newKeyValueTypeSelectWindowController_->showWindow();
  newKeyValueTypeSelectWindowController_->dialog().startAnew();
}

}  // namespace tarn
