#pragma once

#include <stdlib.h>

#include <filesystem>
#include <optional>
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

// While one lives the user's data folder is an empty one of the test's own; it goes with the object.
class TemporaryDataHome final {
public:
  TemporaryDataHome() {
    if (const char* const before = ::getenv("XDG_DATA_HOME")) before_ = before;
    ::setenv("XDG_DATA_HOME", folder().c_str(), 1);
  }
  ~TemporaryDataHome() { before_ ? ::setenv("XDG_DATA_HOME", before_->c_str(), 1) : ::unsetenv("XDG_DATA_HOME"); }

  const std::filesystem::path& folder() const { return folder_.path(); }
  // The store's file, whether it is there or not.
  std::filesystem::path storeFile() const { return folder() / "Tarn" / "ServerItemModel.sqlite"; }

private:
  TemporaryFolder folder_;
  std::optional<std::string> before_;
};

}  // namespace tarn::test
