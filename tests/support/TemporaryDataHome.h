#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tarn::test {

// While one lives the user's data folder is an empty one of the test's own; it goes with the object.
class TemporaryDataHome final {
public:
  TemporaryDataHome();
  TemporaryDataHome(const TemporaryDataHome&) = delete;
  TemporaryDataHome& operator=(const TemporaryDataHome&) = delete;
  ~TemporaryDataHome();

  const std::filesystem::path& folder() const { return folder_; }
  // The store's file, whether it is there or not.
  std::filesystem::path storeFile() const { return folder_ / "Tarn" / "ServerItemModel.sqlite"; }

private:
  std::filesystem::path folder_;
  std::optional<std::string> before_;
};

}  // namespace tarn::test
