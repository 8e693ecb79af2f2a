#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace tarn {

// What one line of the keyspace section says: "db0:keys=12,expires=0,avg_ttl=0".
struct DatabaseKeys {
  std::string_view name;
  std::string_view count;
};

// Both pure; any thread. The answers point into the text given.

// The lines behind "# Keyspace" in the text of INFO; nothing if it has no such section.
std::vector<std::string_view> keyspaceLines(std::string_view info);

// Nothing for a line of another form.
std::optional<DatabaseKeys> databaseKeys(std::string_view line);

}  // namespace tarn
