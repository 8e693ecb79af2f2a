#include "tests/support/TemporaryDataHome.h"

#include <stdlib.h>

#include <stdexcept>

namespace tarn::test {

TemporaryDataHome::TemporaryDataHome() {
  std::string path = (std::filesystem::temp_directory_path() / "tarn-data-XXXXXX").string();
  if (!mkdtemp(path.data())) throw std::runtime_error("no temporary folder");
  folder_ = path;
  if (const char* const before = getenv("XDG_DATA_HOME")) before_ = before;
  setenv("XDG_DATA_HOME", folder_.c_str(), 1);
}

TemporaryDataHome::~TemporaryDataHome() {
  if (before_) {
    setenv("XDG_DATA_HOME", before_->c_str(), 1);
  } else {
    unsetenv("XDG_DATA_HOME");
  }
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

}  // namespace tarn::test
