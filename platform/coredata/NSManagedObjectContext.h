#pragma once

#include "platform/coredata/NSError.h"
#include "platform/coredata/NSFetchRequest.h"
#include "platform/coredata/NSManagedObject.h"
#include "platform/coredata/NSManagedObjectModel.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class PersistentStore;

// The records in use, and their changes until save() writes them. Main queue only.
class NSManagedObjectContext final {
public:
  using Objects = std::vector<std::shared_ptr<NSManagedObject>>;

  // `file` is the store's, for what save() reports.
  NSManagedObjectContext(std::shared_ptr<const NSManagedObjectModel> model, std::string file);
  NSManagedObjectContext(const NSManagedObjectContext&) = delete;
  NSManagedObjectContext& operator=(const NSManagedObjectContext&) = delete;
  ~NSManagedObjectContext();

  // Null if the model has no such entity.
  const NSEntityDescription* entityForName(std::string_view name) const;

  // A new record without values, stored by the next save. Null if the model has no such entity.
  std::shared_ptr<NSManagedObject> insertNewObjectForEntityForName(std::string_view name);

  // The records in the store's order, with their unsaved changes, then the new ones; deleted ones are left out. Nothing
  // if the store can't be read.
  std::optional<Objects> executeFetchRequest(const NSFetchRequest& request);

  // The next save removes the record.
  void deleteObject(const std::shared_ptr<NSManagedObject>& object);

  bool hasChanges() const;

  // Posts the block to the main queue.
  void performBlock(std::function<void()> block);

  // Writes all changes as one transaction. On failure the store is as it was, and the context keeps its changes, so
  // that a later save can still succeed. Nothing is returned when all went well.
  std::optional<NSError> save();

private:
  friend class NSPersistentContainer;

  std::shared_ptr<NSManagedObject> addObject(const NSEntityDescription& entity);
  // Takes over what the store holds of the entity; false if it can't be read.
  bool refresh(const NSEntityDescription& entity);
  // Within a transaction. Tells the row of each object, in step with objects_.
  std::optional<NSError> writeChanges(std::vector<std::int64_t>& rowIds);
  // The row of the object; nothing on failure.
  std::optional<std::int64_t> write(const NSManagedObject& object);

  std::shared_ptr<const NSManagedObjectModel> model_;
  const std::string file_;
  // Null while the container has none open: nothing can be fetched or saved.
  std::unique_ptr<PersistentStore> store_;
  // Every record in use: those fetched, and the new ones.
  Objects objects_;
  // Those of the store that the next save removes.
  Objects deleted_;
};

}  // namespace tarn
