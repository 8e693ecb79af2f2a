#pragma once

#include "platform/coredata/NSManagedObjectContext.h"

namespace tarn {

// One store: a file NAME.sqlite in the user's data folder, `$XDG_DATA_HOME/Tarn/` or `~/.local/share/Tarn/`, with a
// table for each entity. Since it holds passwords, only the user may enter and read it. Main queue only.
class NSPersistentContainer final {
public:
  NSPersistentContainer(const std::string& name, NSManagedObjectModel model);

  // Opens the store; makes it if the file is missing or empty. A store that is damaged, from a newer version, not
  // readable or not writable is left as it is, and the error tells its file and why.
  std::optional<NSError> loadPersistentStores();

  // The context of the main queue. While the store isn't open it has no record and can't save.
  NSManagedObjectContext& viewContext() { return viewContext_; }

private:
  NSManagedObjectContext viewContext_;
};

}  // namespace tarn
