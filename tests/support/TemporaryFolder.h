#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace tarn::test {

// An empty folder of the test's own; it goes with the object.
class TemporaryFolder final {
public:
  TemporaryFolder() {
    std::string path = (std::filesystem::temp_directory_path() / "tarn-test-XXXXXX").string();
    if (::mkdtemp(path.data()) == nullptr) throw std::runtime_error("No temporary folder");
    path_ = path;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }

private:
  std::filesystem::path path_;
};

// Makes the user's data folder an empty one of the test's own. No later test gets to the real one either.
class TemporaryDataHome final {
public:
  TemporaryDataHome() { ::setenv("XDG_DATA_HOME", folder_.path().c_str(), 1); }

  const std::filesystem::path& folder() const { return folder_.path(); }
  std::filesystem::path storeFile() const { return folder_.path() / "Tarn" / "ServerItemModel.sqlite"; }

private:
  TemporaryFolder folder_;
};

}  // namespace tarn::test
