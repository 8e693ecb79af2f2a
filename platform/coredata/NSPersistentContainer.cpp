#include "platform/coredata/NSPersistentContainer.h"

#include "platform/foundation/LocalizableText.h"

#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace tarn {
namespace {

namespace fs = std::filesystem;

// In the file's header; a later layout of the tables gets a higher number.
constexpr std::int64_t currentVersion = 1;

// Empty if the user has no home.
std::string fileNamed(const std::string& name) {
  const std::string inFolder = "/Tarn/" + name + ".sqlite";
  const char* const dataHome = std::getenv("XDG_DATA_HOME");
  if (dataHome && *dataHome == '/') return dataHome + inFolder;
  const char* home = std::getenv("HOME");
  if (!home || *home != '/') {
    const passwd* const user = getpwuid(getuid());
    home = user ? user->pw_dir : nullptr;
  }
  return home ? home + ("/.local/share" + inFolder) : std::string();
}

// Takes the path away from everyone else; what the user took from themselves stays taken.
void makePrivate(const fs::path& path) {
  std::error_code ignored;
  fs::permissions(path, fs::perms::group_all | fs::perms::others_all, fs::perm_options::remove, ignored);
}

// Each of these answers why the file can't serve as a store, or nothing if it can.

// Makes the folder and an empty file where they are missing.
std::optional<std::string> makeFile(const std::string& file) {
  const fs::path folder = fs::path(file).parent_path();
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) return error.message();
  makePrivate(folder);
  // A journal must be made beside the file.
  if (access(folder.c_str(), R_OK | W_OK | X_OK) != 0) return localizable("the folder can't be written");
  constexpr mode_t onlyTheUser = 0600;
  const int created = open(file.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, onlyTheUser);
  if (created < 0 && errno != EEXIST) return std::generic_category().message(errno);
  if (created >= 0) close(created);
  const fs::file_status status = fs::status(file, error);
  if (!fs::is_regular_file(status)) return localizable("it is no file");
  if (access(file.c_str(), R_OK) != 0) return std::generic_category().message(errno);
  // The superuser could write it nevertheless, but someone has said that it is to stay as it is.
  const bool isProtected = (status.permissions() & static_cast<fs::perms>(0222)) == fs::perms::none;
  if (isProtected || access(file.c_str(), W_OK) != 0) return localizable("the file can't be written");
  makePrivate(file);
  return std::nullopt;
}

std::optional<std::string> makeTables(SqliteFile& store, NSManagedObjectModel model) {
  return store.writeWhole([&] {
    for (const NSEntityDescription& entity : model) {
      std::string columns;
      for (const auto& [name, type, isRequired] : entity.attributes) {
        const bool isText = type == NSAttributeType::string || type == NSAttributeType::uuid;
        columns += (columns.empty() ? "" : ", ") + std::string(name) + (isText ? " TEXT" : " INTEGER");
      }
      // Another running program may have made them at this moment.
      if (!store.run(std::string("CREATE TABLE IF NOT EXISTS ") + entity.name + " (" + columns + ")")) return false;
    }
    return store.run("PRAGMA user_version = " + std::to_string(currentVersion)).has_value();
  });
}

std::optional<std::string> checkTables(SqliteFile& store, NSManagedObjectModel model) {
  for (const NSEntityDescription& entity : model) {
    for (const NSAttributeDescription& attribute : entity.attributes) {
      const auto found = store.run("SELECT 1 FROM pragma_table_info(?) WHERE name = ?", {entity.name, attribute.name});
      if (!found) return store.error();
      if (found->empty()) return std::string("the file has no ") + entity.name + "." + attribute.name;
    }
  }
  return std::nullopt;
}

// Checks the whole file, changes none that it refuses, and makes the tables in an empty one.
std::optional<std::string> prepare(SqliteFile& store, NSManagedObjectModel model) {
  const auto version = store.run("PRAGMA user_version");
  if (!version) return store.error();
  if (store.isReadOnly()) return localizable("the file can't be written");
  if (version->front().begin()->second > NSManagedValue(currentVersion))
    return localizable("the file is from a newer version of the program");
  const auto health = store.run("PRAGMA quick_check(1)");
  if (!health) return store.error();
  const std::string found = std::get<std::string>(health->front().begin()->second);
  if (found != "ok") return "the file is damaged: " + found;
  const auto tables = store.run("SELECT 1 FROM sqlite_schema");
  if (!tables) return store.error();
  if (auto fault = tables->empty() ? std::nullopt : checkTables(store, model)) return fault;
  // With the journal deleted at each end of a transaction, and its folder written through, no moment of a crash loses
  // what was saved before.
  if (!store.run("PRAGMA journal_mode = DELETE") || !store.run("PRAGMA synchronous = EXTRA")) return store.error();
  return tables->empty() ? makeTables(store, model) : std::nullopt;
}

}  // namespace

NSPersistentContainer::NSPersistentContainer(const std::string& name, NSManagedObjectModel model)
    : viewContext_(model, fileNamed(name)) {}

std::optional<NSError> NSPersistentContainer::loadPersistentStores() {
  const std::string& file = viewContext_.file_;
  if (file.empty()) return NSError{file, localizable("the user has no home folder")};
  if (auto reason = makeFile(file)) return NSError{file, std::move(*reason)};
  auto store = std::make_unique<SqliteFile>(file);
  if (auto reason = prepare(*store, viewContext_.model_)) return NSError{file, std::move(*reason)};
  viewContext_.store_ = std::move(store);
  return std::nullopt;
}

}  // namespace tarn
