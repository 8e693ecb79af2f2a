#pragma once

#include "wire/ConnectionStatus.h"
#include "wire/connection/ServerAddress.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tarn {

class ByteStream;
class SocketCalls;

// Told how a connect goes on. An answer of false ends it: it isn't wanted any more.
struct ConnectSteps {
  // The stream is there; from now on it may be shut down.
  std::function<bool(std::shared_ptr<ByteStream>)> keep;
  std::function<bool(ConnectionStatus)> reach;
};

struct ConnectFailure {
  // The text for the user.
  std::string message;
  // The status that it leaves; nothing where that stays.
  std::optional<ConnectionStatus> status;
};

// Resolves the host, connects within 5 seconds and tunes the socket: it waits up to 5 seconds for the server, and
// notices a server that is gone. Blocks; nothing when the connection stands.
std::optional<ConnectFailure> connectByTcp(const ServerAddress& server, SocketCalls& calls, const ConnectSteps& steps);

}  // namespace tarn
