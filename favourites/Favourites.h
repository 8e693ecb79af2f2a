#pragma once

#include "favourites/ConnectionTabs.h"
#include "favourites/FavouritesStore.h"
#include "favourites/FavouritesTree.h"
#include "favourites/MyFavouriteItem.h"

#include <memory>

namespace tarn {

// The favourites wherever they stand: in the list, the store, the tree and the tabs. The last three outlive what holds
// this. Main thread only.
struct Favourites {
  std::shared_ptr<MyFavouriteItem> root;
  FavouritesStore& store;
  FavouritesTree& tree;
  ConnectionTabs& tabs;
};

}  // namespace tarn
