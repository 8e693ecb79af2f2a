#pragma once

#include "wire/stream/ConnectionStatus.h"
#include "wire/stream/ServerAddress.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tarn {

class ByteStream;

// Called as a connect goes on, on its thread. An answer of false ends it: it isn't wanted any more.
struct ConnectSteps {
  // The stream is there, and may be shut down from now on.
  std::function<bool(std::shared_ptr<ByteStream>)> opened;
  std::function<bool(ConnectionStatus)> statusChanged;
};

struct ConnectFailure {
  // The text for the user.
  std::string message;
  // The status that it leaves; nothing where that stays.
  std::optional<ConnectionStatus> status;
};

// Connects a stream to a server; blocks, for a limited time. Nothing when the connection stands. Any thread may call
// it, several at once.
using StreamOpener = std::function<std::optional<ConnectFailure>(const ServerAddress& server, const ConnectSteps&)>;

}  // namespace tarn
