#pragma once

#include <optional>
#include <string>

namespace tarn {

// Where the user's data lies: `$XDG_DATA_HOME/Tarn` or `~/.local/share/Tarn`; nothing if the user has no home.
std::optional<std::string> userDataFolder();

// Makes the file, empty, if it is missing, and its folder; takes both away from all but the user, since the file holds
// passwords. Answers why the file can't serve as a store, or nothing if it can.
std::optional<std::string> prepareStoreFile(const std::string& file);

}  // namespace tarn
