#include "platform/coredata/StoreFile.h"

#include "platform/foundation/LocalizableText.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace tarn {
namespace {

constexpr const char* folderName = "Tarn";
constexpr mode_t folderMode = 0700;
constexpr mode_t fileMode = 0600;
constexpr mode_t everyoneElse = 077;

std::string reasonOf(int error) {
  return std::generic_category().message(error);
}

// Takes the path away from everyone else; what the user took from themselves stays taken.
void makePrivate(const std::string& path, mode_t mode) {
  if ((mode & everyoneElse) != 0) chmod(path.c_str(), mode & ~everyoneElse & 07777U);
}

std::optional<std::string> prepareFolder(const std::string& folder) {
  std::error_code error;
  std::filesystem::create_directories(std::filesystem::path(folder).parent_path(), error);
  if (error) return error.message();
  if (mkdir(folder.c_str(), folderMode) != 0 && errno != EEXIST) return reasonOf(errno);
  struct stat info {};
  if (stat(folder.c_str(), &info) != 0) return reasonOf(errno);
  if (!S_ISDIR(info.st_mode)) return reasonOf(ENOTDIR);
  makePrivate(folder, info.st_mode);
  // A journal must be made beside the file.
  if (access(folder.c_str(), R_OK | W_OK | X_OK) != 0) return localizable("the folder can't be written");
  return std::nullopt;
}

}  // namespace

std::optional<std::string> userDataFolder() {
  const char* const dataHome = std::getenv("XDG_DATA_HOME");
  if (dataHome != nullptr && *dataHome == '/') return std::string(dataHome) + '/' + folderName;
  const char* home = std::getenv("HOME");
  if (home == nullptr || *home != '/') {
    const passwd* const user = getpwuid(getuid());
    home = user == nullptr ? nullptr : user->pw_dir;
  }
  if (home == nullptr) return std::nullopt;
  return std::string(home) + "/.local/share/" + folderName;
}

std::optional<std::string> prepareStoreFile(const std::string& file) {
  if (auto reason = prepareFolder(std::filesystem::path(file).parent_path().string())) return reason;
  const int created = open(file.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, fileMode);
  if (created >= 0) {
    close(created);
    return std::nullopt;
  }
  if (errno != EEXIST) return reasonOf(errno);
  struct stat info {};
  if (stat(file.c_str(), &info) != 0) return reasonOf(errno);
  if (!S_ISREG(info.st_mode)) return localizable("it is no file");
  if (access(file.c_str(), R_OK) != 0) return reasonOf(errno);
  // The superuser could write it nevertheless, but someone has said that it is to stay as it is.
  if ((info.st_mode & 0222U) == 0 || access(file.c_str(), W_OK) != 0) return localizable("the file can't be written");
  makePrivate(file, info.st_mode);
  return std::nullopt;
}

}  // namespace tarn
