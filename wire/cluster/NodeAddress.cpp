#include "wire/cluster/NodeAddress.h"

#include "platform/foundation/DecimalNumber.h"
#include "platform/foundation/SplitText.h"

namespace tarn {

std::optional<NodeAddress> nodeAddress(std::string_view text) {
  const auto parts = splitText(text, ":");
  if (parts.size() < 2) return std::nullopt;
  const auto port = decimalInteger(parts[1].substr(0, parts[1].find('@')));
  if (!port || *port < 0 || *port > 65535) return std::nullopt;
  return NodeAddress{std::string(parts[0]), static_cast<int>(*port)};
}

std::optional<NodeAddress> redirectTarget(std::string_view line) {
  const auto parts = splitText(line, " ");
  return parts.size() < 3 ? std::nullopt : nodeAddress(parts[2]);
}

std::vector<NodeAddress> mastersIn(std::string_view nodes) {
  std::vector<NodeAddress> masters;
  for (const std::string_view line : splitText(nodes, "\n")) {
    if (line.find("master") == std::string_view::npos) continue;
    const auto fields = splitText(line, " ");
    if (fields.size() < 2) continue;
    if (auto address = nodeAddress(fields[1])) masters.push_back(*std::move(address));
  }
  return masters;
}

}  // namespace tarn
