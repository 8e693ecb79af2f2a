#include "favourites/NewConnectionViewController.h"

#include "codec/CharsetEnum.h"
#include "formatters/PositiveIntegerValueFormatter.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/DecimalNumber.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"

#include <algorithm>
#include <utility>

namespace tarn {

NewConnectionViewController::NewConnectionViewController(Favourites favourites, std::function<void()> willClose)
    : favourites_(std::move(favourites)), willClose_(std::move(willClose)) {
  viewDidLoad();
}

void NewConnectionViewController::viewDidLoad() {
  layout_.btnSave.setAction([this] { saveConnection(); });
  layout_.btnCancel.setAction([this] { closeForm(); });
  layout_.btnTestConnection.setAction([this] { testConnection(); });
  layout_.btnShowAuth.setAction([this] { toggleShowAuth(); });
  NSTextField* const fields[] = {&layout_.txtCnnName, &layout_.txtIp, &layout_.txtPort, &layout_.txtAuth,
                                 &layout_.txtAuthToShow};
  for (NSTextField* const field : fields)
    field->setAction([this] { saveConnection(); });
  layout_.txtPort.setFormatter(std::make_unique<PositiveIntegerValueFormatter>());
  layout_.popDefaultCharset.removeAllItems();
  layout_.popDefaultCharset.addItemsWithTitles(charsetNames());
  layout_.txtAuthToShow.setHidden(true);
}

void NewConnectionViewController::editNew() {
  fill(std::nullopt, {"", "", "", "", charsetNames().front()});
}

void NewConnectionViewController::edit(const ServerItem& server) {
  fill(server.serverId(), {.name = server.connectionName(),
                           .host = server.serverIp(),
                           .port = std::to_string(server.serverPort()),
                           .password = server.auth(),
                           .charset = server.defaultCharset()});
}

void NewConnectionViewController::fill(const std::optional<NSUUID>& serverId, const Texts& texts) {
  serverId_ = serverId;
  layout_.txtCnnName.setStringValue(texts.name);
  layout_.txtIp.setStringValue(texts.host);
  layout_.txtPort.setStringValue(texts.port);
  layout_.txtAuth.setStringValue(texts.password);
  layout_.txtAuthToShow.setStringValue(texts.password);
  layout_.btnShowAuth.setState(false);
  showAuth(false);
  layout_.popDefaultCharset.selectItemWithTitle(texts.charset);
  layout_.txtCnnName.becomeFirstResponder();
}

void NewConnectionViewController::toggleShowAuth() {
  const bool inClear = layout_.btnShowAuth.state();
  if (inClear) {
    layout_.txtAuthToShow.setStringValue(layout_.txtAuth.stringValue());
  } else {
    layout_.txtAuth.setStringValue(layout_.txtAuthToShow.stringValue());
  }
  showAuth(inClear);
}

void NewConnectionViewController::showAuth(bool inClear) {
  NSTextField& shown = inClear ? layout_.txtAuthToShow : layout_.txtAuth;
  NSTextField& hidden = inClear ? layout_.txtAuth : layout_.txtAuthToShow;
  const bool underEdit = hidden.isFirstResponder();
  shown.setHidden(false);
  if (underEdit) shown.becomeFirstResponder();
  hidden.setHidden(true);
}

std::string NewConnectionViewController::password() const {
  return (layout_.btnShowAuth.state() ? layout_.txtAuthToShow : layout_.txtAuth).stringValue();
}

bool NewConnectionViewController::hasPort() const {
  if (!layout_.txtPort.stringValue().empty()) return true;
  showAlert(localizedString("Enter the Server Port first."));
  return false;
}

bool NewConnectionViewController::isDuplicateName() const {
  const std::string name = layout_.txtCnnName.stringValue();
  const auto& servers = favourites_.root->servers;
  return std::any_of(servers.begin(), servers.end(), [&](const std::shared_ptr<ServerItem>& server) {
    return server->connectionName() == name && server->serverId() != serverId_;
  });
}

void NewConnectionViewController::writeAddress(ServerItem& server) const {
  server.setConnectionName(layout_.txtCnnName.stringValue());
  server.setServerIp(layout_.txtIp.stringValue());
  server.setServerPort(static_cast<int>(decimalInteger(layout_.txtPort.stringValue()).value_or(0)));
  server.setAuth(password());
}

void NewConnectionViewController::writeTo(ServerItem& server) const {
  writeAddress(server);
  server.setDefaultCharset(layout_.popDefaultCharset.titleOfSelectedItem());
}

void NewConnectionViewController::saveConnection() {
  if (!hasPort()) return;
  if (isDuplicateName()) {
    showAlert(replacingPlaceholder(
        localizedString("There is already a Favourite called '{0}'，can not add the same name to favourite"), "{0}",
        layout_.txtCnnName.stringValue()));
    return;
  }
  if (serverId_) {
    saveEdited(*serverId_);
  } else {
    saveNew();
  }
  favourites_.store.saveIfChanged();
  favourites_.tree.reloadData();
  closeForm();
}

void NewConnectionViewController::saveNew() {
  const auto server = std::make_shared<ServerItem>();
  writeTo(*server);
  favourites_.root->servers.push_back(server);
  favourites_.store.insertRecord(*server);
}

void NewConnectionViewController::saveEdited(const NSUUID& serverId) {
  const auto& servers = favourites_.root->servers;
  const auto found = std::find_if(servers.begin(), servers.end(), [&](const std::shared_ptr<ServerItem>& server) {
    return server->serverId() == serverId;
  });
  // Removed while the form was open: there is no record either, and no tab.
  if (found == servers.end()) return;
  writeTo(**found);
  favourites_.store.changeRecord(**found);
  favourites_.tabs.showEditedServer(**found);
}

void NewConnectionViewController::testConnection() {
  if (!hasPort()) return;
  const auto server = std::make_shared<ServerItem>(ServerItem::Life::transient);
  writeAddress(*server);
  const ServerItem::Outcome outcome = [&] {
    const WaitCursor waiting;
    return server->connectToServer();
  }();
  server->closeConnection();
  showAlert(outcome.ok ? localizedString("Test Connection Success.") : outcome.message);
}

void NewConnectionViewController::closeForm() {
  willClose_();
  layout_.window.close();
}

}  // namespace tarn
