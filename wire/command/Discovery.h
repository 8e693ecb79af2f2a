#pragma once

#include <optional>
#include <string>
#include <unordered_map>

namespace tarn {

class ServerCommands;

// What a server holds, asked of it. Both block until the replies are in.

// The number of its databases; nothing where the server doesn't answer with one, which has then been shown to the user.
std::optional<int> databaseCount(ServerCommands& server);

// The number of keys of each database that has some, as text, by the database's name; in a cluster the sum over all
// masters, as that of the only database. Nothing where the server doesn't answer, or is closed meanwhile; shows
// nothing.
using KeyCounts = std::unordered_map<std::string, std::string>;
std::optional<KeyCounts> keyCounts(ServerCommands& server);

}  // namespace tarn
