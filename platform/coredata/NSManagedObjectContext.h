#pragma once

#include "platform/coredata/SqliteFile.h"

#include <algorithm>
#include <utility>

namespace tarn {

// Why the store could not do what it was asked.
struct NSError {
  std::string file;
  // A sentence in English without its full stop, such as "database disk image is malformed".
  std::string reason;

  // The file and the reason in one line, and the same as the list of its parts.
  std::string description() const { return file + ": " + reason; }
  std::string userInfo() const { return "{file = \"" + file + "\"; reason = \"" + reason + "\"}"; }
};

// The records in use, and their changes until save() writes them. Entities are named as the model has them. Main queue
// only.
class NSManagedObjectContext final {
public:
  using Objects = std::vector<std::shared_ptr<NSManagedObject>>;

  // `file` is the store's, for what save() reports.
  NSManagedObjectContext(NSManagedObjectModel model, std::string file) : model_(model), file_(std::move(file)) {}

  // A new record without values, stored by the next save.
  std::shared_ptr<NSManagedObject> insertNewObjectForEntityForName(std::string_view name);

  // The records of an entity in the store's order, with their unsaved changes, then the new ones; deleted ones are left
  // out. Nothing if the store can't be read.
  std::optional<Objects> executeFetchRequest(std::string_view entityName);

  // The next save removes the record.
  void deleteObject(NSManagedObject& object) { object.isDeleted_ = true; }

  bool hasChanges() const;

  // Writes all changes as one transaction. On failure the store is as it was, and the context keeps its changes, so
  // that a later save can still succeed. Nothing is returned when all went well.
  std::optional<NSError> save();

private:
  friend class NSPersistentContainer;

  const NSEntityDescription& entityForName(std::string_view name) const {
    return *std::ranges::find_if(model_, [name](const auto& entity) { return entity.name == name; });
  }
  // Within a transaction. The row of the object, none if it is deleted; false on failure.
  bool write(const NSManagedObject& object, std::optional<std::int64_t>& rowId);

  const NSManagedObjectModel model_;
  const std::string file_;
  // Null while the container has none open: nothing can be fetched or saved.
  std::unique_ptr<SqliteFile> store_;
  // Every record in use: those fetched, the new ones and the deleted ones.
  Objects objects_;
};

}  // namespace tarn
