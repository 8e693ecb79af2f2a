#pragma once

#include "favourites/MyFavouriteItem.h"
#include "platform/appkit/NSOutlineView.h"
#include "wire/ServerItem.h"

#include <functional>
#include <memory>
#include <vector>

namespace tarn {

// The tree on the left: the root "My Favourite", a row for each server, and below it its databases. What a row shows is
// computed from the live objects at each reload; nothing is kept here but the list of databases that is being read.
// Main thread only.
class FavouritesTree final : public NSOutlineViewDataSource, public NSOutlineViewDelegate {
public:
  // What a click on a row asks for.
  struct Gestures {
    std::function<void(const NSItem& item)> openTabForItem;
    std::function<void(const std::shared_ptr<ServerItem>& server)> expandServer;
  };

  // `view` outlives the tree.
  FavouritesTree(NSOutlineView& view, std::shared_ptr<MyFavouriteItem> root);
  FavouritesTree(const FavouritesTree&) = delete;
  FavouritesTree& operator=(const FavouritesTree&) = delete;
  ~FavouritesTree() override;

  // Shows the root opened, with its servers collapsed. From here on gestures are reported.
  void show(Gestures gestures);

  // The servers among the selected rows, from top to bottom; the root and databases don't count.
  std::vector<std::shared_ptr<ServerItem>> selectedServers() const;

  // All rows anew, after a change of the list of servers.
  void reloadData();
  // The server's own row anew, with the icon of its status.
  void reloadItem(const std::shared_ptr<ServerItem>& server);
  // The server's row and its databases anew; the selected row numbers stay.
  void refreshServerRow(const std::shared_ptr<ServerItem>& server);
  void collapseItem(const std::shared_ptr<ServerItem>& server);
  // Collapses and expands, which loads the databases that the server has now.
  void reopenItem(const std::shared_ptr<ServerItem>& server);
  // Selects the row that the server has while no other server is expanded, and opens no tab.
  void selectServerRow(const std::shared_ptr<ServerItem>& server);

  int numberOfChildrenOfItem(const NSItem& item) override;
  NSItem childOfItem(int index, const NSItem& item) override;
  bool isItemExpandable(const NSItem& item) override;

  NSOutlineCell viewForItem(const NSItem& item) override;
  bool shouldShowOutlineCellForItem(const NSItem& item) override;
  bool shouldExpandItem(const NSItem& item) override;
  bool shouldSelectItem(const NSItem& item) override;

private:
  NSOutlineView& view_;
  const std::shared_ptr<MyFavouriteItem> root_;
  Gestures gestures_;

  // The children that were counted last. The server's queue may replace the list before each of them has been asked
  // for.
  std::shared_ptr<const ServerItem::Databases> countedDatabases_;
};

}  // namespace tarn
