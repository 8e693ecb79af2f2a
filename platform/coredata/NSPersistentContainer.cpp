#include "platform/coredata/NSPersistentContainer.h"

#include "platform/coredata/PersistentStore.h"
#include "platform/coredata/StoreFile.h"
#include "platform/foundation/LocalizableText.h"

#include <utility>
#include <variant>

namespace tarn {
namespace {

// Empty if the user has no home.
std::string storeFile(const std::string& name) {
  const auto folder = userDataFolder();
  return folder ? *folder + '/' + name + ".sqlite" : std::string();
}

}  // namespace

NSPersistentContainer::NSPersistentContainer(const std::string& name, std::shared_ptr<const NSManagedObjectModel> model)
    : model_(std::move(model)), file_(storeFile(name)), viewContext_(model_, file_) {}

std::optional<NSError> NSPersistentContainer::loadPersistentStores() {
  if (file_.empty()) return NSError{file_, localizable("the user has no home folder")};
  auto opened = PersistentStore::open(file_, *model_);
  if (auto* const error = std::get_if<NSError>(&opened)) return std::move(*error);
  viewContext_.store_ = std::move(std::get<std::unique_ptr<PersistentStore>>(opened));
  return std::nullopt;
}

}  // namespace tarn
