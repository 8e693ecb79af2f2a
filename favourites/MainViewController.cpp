#include "favourites/MainViewController.h"

#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/PostToMainQueue.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

namespace tarn {

namespace {

MainViewController* sharedController = nullptr;

// The controller; made where there is none, with the content that `makeContent` answers with, and forgotten when its
// window closes.
template <class Controller, class MakeContent>
Controller& madeOnce(std::shared_ptr<Controller>& controller, MakeContent makeContent) {
  if (!controller) {
    // The window may be closing by the click on one of its own buttons.
    const std::function<void()> willClose = [&controller] { releaseOnMainQueue(std::exchange(controller, nullptr)); };
    controller = std::make_shared<Controller>(makeContent(willClose), willClose);
  }
  return *controller;
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

void MainViewController::addConnectionItems(NSMenu& menu) {
  menu.addItem(localizedString("(Re)Connect Selected Connection(s)"), [this] { clickConnect(); });
  menu.addItem(localizedString("Close Selected Connection(s)"), [this] { clickCloseConnections(); });
  menu.addItem(localizedString("Remove Selected Connection(s)"), [this] { clickRemoveSelectedConnections(); });
  menu.addItem(localizedString("Edit Connection"), [this] { clickEditConnection(); });
  menu.addItem(localizedString("New Connection"), [this] { clickNewConnection(); });
}

NewConnectionViewController& MainViewController::showConnectionForm(const std::string& title) {
  NewConnectionWindowController& controller = madeOnce(newConnectionWindowController_, [this](const auto& willClose) {
    return std::make_shared<NewConnectionViewController>(favourites_, willClose);
  });
  controller.window().setTitle(title);
  controller.showWindow();
  return controller.content();
}

void MainViewController::clickNewConnection() {
  showConnectionForm(localizedString("Tarn - New Connection")).editNew();
}

void MainViewController::clickEditConnection() {
  const auto server = commands_->serverToEdit();
  if (!server) return;
  showConnectionForm(localizedString("Tarn - Edit Connection")).edit(*server);
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
  using Dialog = NewKeyValueTypeSelectViewController;
  auto& controller = madeOnce(newKeyValueTypeSelectWindowController_, [this](const auto& willClose) {
    return std::make_shared<Dialog>(
        Dialog::Answers{.chosen = [this](ValueType type) { newKeyTypeChosen(type); }, .cancelled = willClose});
  });
  controller.showWindow();
  controller.content().startAnew();
}

}  // namespace tarn
