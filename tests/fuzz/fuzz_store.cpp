// Opens any bytes as the store of the favourites. A file that is refused, or takes no record, stays as it is; else it
// holds the record when it is opened again.

#include "favourites/ServerItemModel.h"
#include "platform/coredata/NSPersistentContainer.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/support/TemporaryFolder.h"

using namespace tarn;

void tarn::fuzz(std::string_view input) {
  constexpr std::string_view entity = "ServerItemStorage";
  static const test::TemporaryDataHome home;
  const std::filesystem::path file = home.storeFile();
  std::filesystem::remove_all(file.parent_path());
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << input;

  NSPersistentContainer store("ServerItemModel", serverItemModel);
  const bool isOpen = !store.loadPersistentStores();
  const auto before = store.viewContext().executeFetchRequest(entity);
  const auto record = store.viewContext().insertNewObjectForEntityForName(entity);
  record->setValueForKey("serverId", NSUUID().uuidString());
  for (const char* const key : {"connectionName", "serverIp", "auth"})
    record->setValueForKey(key, std::string("a"));
  record->setValueForKey("serverPort", std::int64_t{1});
  const bool isSaved = !store.viewContext().save();
  require(isOpen || (!before && !isSaved));
  if (!isSaved && !input.empty()) {
    std::ifstream stream(file, std::ios::binary);
    require(std::string(std::istreambuf_iterator<char>(stream), {}) == input);
  }
  if (!isSaved || !before) return;
  NSPersistentContainer again("ServerItemModel", serverItemModel);
  require(!again.loadPersistentStores());
  const auto after = again.viewContext().executeFetchRequest(entity);
  require(after && after->size() == before->size() + 1);
}
