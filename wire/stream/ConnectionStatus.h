#pragma once

namespace tarn {

enum class ConnectionStatus { notConnected = 0, connected = 1, disConnected = 2, connecting = 3 };

}  // namespace tarn
