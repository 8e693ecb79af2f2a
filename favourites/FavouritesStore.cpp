#include "favourites/FavouritesStore.h"

#include "favourites/StoreHost.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSOperationQueue.h"

#include <optional>
#include <utility>

namespace tarn {

namespace {

using Record = std::shared_ptr<NSManagedObject>;

NSManagedObjectContext* storeContext() {
  StoreHost* const host = StoreHost::installed();
  return host ? &host->context() : nullptr;
}

// None if they can't be read.
NSManagedObjectContext::Objects fetchRecords(NSManagedObjectContext& context) {
  return context.executeFetchRequest(ServerItemStorage::entityName).value_or(NSManagedObjectContext::Objects());
}

// Calls `take` with the context and each record with this serverId.
template <class Take>
void forEachRecordOf(const NSUUID& serverId, Take take) {
  NSManagedObjectContext* const context = storeContext();
  if (!context) return;
  for (const Record& record : fetchRecords(*context)) {
    if (ServerItemStorage(record).isRecordOf(serverId)) take(*context, record);
  }
}

}  // namespace

std::vector<std::shared_ptr<ServerItem>> FavouritesStore::loadFavourites() {
  std::vector<std::shared_ptr<ServerItem>> servers;
  NSManagedObjectContext* const context = storeContext();
  if (!context) return servers;
  for (const Record& record : fetchRecords(*context)) {
    if (auto server = ServerItemStorage(record).makeServer()) {
      servers.push_back(std::move(server));
    } else {
      logLine("A favourite without " + record->missingRequiredKey().value_or("a readable field") + " is left out");
    }
  }
  return servers;
}

void FavouritesStore::insertRecord(const ServerItem& server) {
  NSManagedObjectContext* const context = storeContext();
  if (!context) return;
  ServerItemStorage storage(context->insertNewObjectForEntityForName(ServerItemStorage::entityName));
  storage.takeServerId(server);
  storage.takeFields(server);
}

void FavouritesStore::changeRecord(const ServerItem& server) {
  forEachRecordOf(server.serverId(), [&server](NSManagedObjectContext&, const Record& record) {
    ServerItemStorage(record).takeFields(server);
  });
}

void FavouritesStore::deleteRecord(const NSUUID& serverId) {
  forEachRecordOf(serverId,
                  [](NSManagedObjectContext& context, const Record& record) { context.deleteObject(*record); });
}

void FavouritesStore::saveIfChanged() {
  NSManagedObjectContext* const context = storeContext();
  if (!context || !context->hasChanges()) return;
  NSOperationQueue::mainQueue().addOperationWithBlock([] {
    if (StoreHost* const host = StoreHost::installed()) host->saveContext();
  });
}

}  // namespace tarn
