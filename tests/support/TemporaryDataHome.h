#pragma once

#include "tests/support/TemporaryFolder.h"

#include <stdlib.h>

#include <filesystem>
#include <optional>
#include <string>

namespace tarn::test {

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
