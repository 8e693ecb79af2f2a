#include "wire/command/Keyspace.h"

#include "platform/foundation/SplitText.h"

namespace tarn {

std::vector<std::string_view> keyspaceLines(std::string_view info) {
  constexpr std::string_view title = "# Keyspace\r\n";
  const std::size_t at = info.find(title);
  if (at == std::string_view::npos) return {};
  return splitText(info.substr(at + title.size()), "\r\n");
}

std::optional<DatabaseKeys> databaseKeys(std::string_view line) {
  constexpr std::string_view mark = ":keys=";
  const std::size_t at = line.find(mark);
  const std::size_t comma = line.find(',');
  if (at == std::string_view::npos || comma == std::string_view::npos || comma < at + mark.size()) return std::nullopt;
  return DatabaseKeys{line.substr(0, at), line.substr(at + mark.size(), comma - at - mark.size())};
}

}  // namespace tarn
