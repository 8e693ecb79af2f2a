#pragma once

#include <string_view>

namespace tarn {

enum class ConnectionStatus { notConnected = 0, connected = 1, disConnected = 2, connecting = 3 };

// "NotConnected", "Connected", "DisConnected", "Connecting": what the status label shows.
std::string_view rawValue(ConnectionStatus status);

}  // namespace tarn
