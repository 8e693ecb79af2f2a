#pragma once

#include "platform/coredata/NSError.h"
#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/coredata/NSManagedObjectModel.h"

#include <memory>
#include <optional>
#include <string>

namespace tarn {

// One store: a file NAME.sqlite in the user's data folder, `$XDG_DATA_HOME/Tarn/` or `~/.local/share/Tarn/`, which only
// the user may enter and read. Main queue only.
class NSPersistentContainer final {
public:
  NSPersistentContainer(const std::string& name, std::shared_ptr<const NSManagedObjectModel> model);

  // Opens the store; makes it if the file is missing or empty. A store that is damaged, from a newer version, not
  // readable or not writable is left as it is, and the error tells its file and why.
  std::optional<NSError> loadPersistentStores();

  // The context of the main queue. While the store isn't open it has no record and can't save.
  NSManagedObjectContext& viewContext() { return viewContext_; }

  // The store's file.
  const std::string& file() const { return file_; }

private:
  std::shared_ptr<const NSManagedObjectModel> model_;
  const std::string file_;
  NSManagedObjectContext viewContext_;
};

}  // namespace tarn
