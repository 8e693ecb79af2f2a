#include "favourites/FavouritesTree.h"

#include "platform/foundation/NSLocalizedString.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tarn {

namespace {

NSImage imageForStatus(ConnectionStatus status) {
  switch (status) {
    case ConnectionStatus::notConnected:
      return NSImage::imageNamed("server");
    case ConnectionStatus::connected:
      return NSImage::imageNamed("server-running");
    case ConnectionStatus::disConnected:
      return NSImage::imageNamed("server-disconnected");
    case ConnectionStatus::connecting:
      return NSImage::imageNamed("server-connecting");
  }
  return {};
}

std::shared_ptr<ServerItem> asServer(const NSItem& item) {
  return std::dynamic_pointer_cast<ServerItem>(item);
}

}  // namespace

FavouritesTree::FavouritesTree(NSOutlineView& view, std::shared_ptr<MyFavouriteItem> root)
    : view_(view), root_(std::move(root)) {}

FavouritesTree::~FavouritesTree() {
  view_.setDelegate(nullptr);
  view_.setDataSource(nullptr);
}

void FavouritesTree::show(Gestures gestures) {
  gestures_ = std::move(gestures);
  view_.setDataSource(this);
  view_.setDelegate(this);
  view_.reloadData();
  view_.expandItem(root_);
}

std::vector<std::shared_ptr<ServerItem>> FavouritesTree::selectedServers() const {
  std::vector<std::shared_ptr<ServerItem>> servers;
  for (const int row : view_.selectedRowIndexes()) {
    if (auto server = asServer(view_.itemAtRow(row))) servers.push_back(std::move(server));
  }
  return servers;
}

void FavouritesTree::reloadData() {
  view_.reloadData();
}

void FavouritesTree::reloadItem(const std::shared_ptr<ServerItem>& server) {
  view_.reloadItem(server);
}

void FavouritesTree::refreshServerRow(const std::shared_ptr<ServerItem>& server) {
  const std::vector<int> selected = view_.selectedRowIndexes();
  view_.reloadItem(server, true);
  view_.selectRowIndexes(selected);
}

void FavouritesTree::collapseItem(const std::shared_ptr<ServerItem>& server) {
  view_.collapseItem(server);
}

void FavouritesTree::reopenItem(const std::shared_ptr<ServerItem>& server) {
  view_.collapseItem(server);
  view_.expandItem(server);
}

void FavouritesTree::selectServerRow(const std::shared_ptr<ServerItem>& server) {
  const auto found = std::find(root_->servers.begin(), root_->servers.end(), server);
  if (found == root_->servers.end()) return;
  view_.selectRowIndexes({static_cast<int>(found - root_->servers.begin()) + 1});
}

int FavouritesTree::numberOfChildrenOfItem(const NSItem& item) {
  if (!item) return 1;
  if (item == root_) return static_cast<int>(root_->servers.size());
  if (const auto server = asServer(item)) {
    countedDatabases_ = server->dbs();
    return static_cast<int>(countedDatabases_->size());
  }
  return 0;
}

NSItem FavouritesTree::childOfItem(int index, const NSItem& item) {
  if (!item) return root_;
  const auto position = static_cast<std::size_t>(index);
  if (item == root_) return root_->servers[position];
  return (*countedDatabases_)[position];
}

bool FavouritesTree::isItemExpandable(const NSItem& item) {
  return item == root_ || asServer(item) != nullptr;
}

NSOutlineCell FavouritesTree::viewForItem(const NSItem& item) {
  if (item == root_) return {.image = {}, .text = localizedString("My Favourite"), .toolTip = {}};
  if (const auto server = asServer(item)) {
    const std::string name = server->connectionName();
    return {.image = imageForStatus(server->connectionStatus()), .text = name, .toolTip = name};
  }
  if (const auto db = std::dynamic_pointer_cast<DbItem>(item)) {
    return {.image = NSImage::imageNamed("db"), .text = db->dbName() + db->keysCount(), .toolTip = db->dbName()};
  }
  return {};
}

bool FavouritesTree::shouldShowOutlineCellForItem(const NSItem& item) {
  return asServer(item) != nullptr;
}

bool FavouritesTree::shouldExpandItem(const NSItem& item) {
  if (const auto server = asServer(item)) gestures_.expandServer(server);
  return true;
}

bool FavouritesTree::shouldSelectItem(const NSItem& item) {
  gestures_.openTabForItem(item);
  return true;
}

}  // namespace tarn
