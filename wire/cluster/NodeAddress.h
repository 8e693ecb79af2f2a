#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// Where a node of a cluster listens, as another node gives it.
struct NodeAddress {
  std::string host;
  int port = 0;

  friend bool operator==(const NodeAddress&, const NodeAddress&) = default;
};

// All pure; any thread.

// "127.0.0.1:7000@17000" or without the "@" part; nothing if there is no host or no port that could be one.
std::optional<NodeAddress> nodeAddress(std::string_view text);

// The target of "MOVED 3999 127.0.0.1:7001" or "ASK ...".
std::optional<NodeAddress> redirectTarget(std::string_view line);

// The masters in the text of "cluster nodes", in its order; lines without an address are left out.
std::vector<NodeAddress> mastersIn(std::string_view nodes);

}  // namespace tarn
