#include "platform/foundation/NSBundle.h"

#include <filesystem>
#include <system_error>

namespace tarn {

std::optional<std::string> NSBundle::pathForResource(std::string_view name, std::string_view extension) {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  const std::string fileName = std::string(name) + "." + std::string(extension);
  // A test program lies one folder below the program.
  for (const char* place : {"../share/tarn", "resources", "../resources"}) {
    std::filesystem::path file = (folder / place / fileName).lexically_normal();
    if (std::filesystem::is_regular_file(file, error)) return file;
  }
  return std::nullopt;
}

}  // namespace tarn
