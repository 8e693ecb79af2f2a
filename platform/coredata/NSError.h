#pragma once

#include <string>

namespace tarn {

// Why the store could not do what it was asked.
struct NSError {
  std::string file;
  // A sentence in English without its full stop, such as "database disk image is malformed".
  std::string reason;

  // The file and the reason in one line.
  std::string description() const { return file + ": " + reason; }
  // The same as the list of its parts.
  std::string userInfo() const { return "{file = \"" + file + "\"; reason = \"" + reason + "\"}"; }
};

}  // namespace tarn
