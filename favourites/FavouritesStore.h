#pragma once

#include "favourites/ServerItemStorage.h"
#include "platform/coredata/NSManagedObjectContext.h"
#include "wire/ServerItem.h"

#include <memory>
#include <vector>

namespace tarn {

// The stored favourites: one record for each server of the tree. A change reaches the disk by `saveIfChanged`, which
// follows it. Works on the context of the StoreHost; without one there is no record and nothing is stored. Main thread
// only.
class FavouritesStore final {
public:
  // A server for each record, in the store's order. A record that lacks a required field is skipped, and stays in the
  // store; if the store can't be read there are none.
  std::vector<std::shared_ptr<ServerItem>> loadFavourites();

  void insertRecord(const ServerItem& server);
  // Every record with the server's serverId takes the other fields.
  void changeRecord(const ServerItem& server);
  // Every record with this serverId goes.
  void deleteRecord(const NSUUID& serverId);

  // Saves, once the current event has been handled, if there is anything to save.
  void saveIfChanged();
};

}  // namespace tarn
