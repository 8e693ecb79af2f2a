#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// The files that come with the program: those of an installed one lie in `share/tarn` beside its `bin`, those of a
// built one in the build folder's `resources`. Any thread.
class NSBundle final {
public:
  // The path of the file `name.extension`; nothing if the program came without it.
  static std::optional<std::string> pathForResource(std::string_view name, std::string_view extension);
};

}  // namespace tarn
