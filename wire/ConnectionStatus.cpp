#include "wire/ConnectionStatus.h"

namespace tarn {

std::string_view rawValue(ConnectionStatus status) {
  switch (status) {
    case ConnectionStatus::notConnected:
      return "NotConnected";
    case ConnectionStatus::connected:
      return "Connected";
    case ConnectionStatus::disConnected:
      return "DisConnected";
    case ConnectionStatus::connecting:
      return "Connecting";
  }
  return {};
}

std::optional<ConnectionStatus> connectionStatusFromRawValue(std::string_view text) {
  for (const auto status : {ConnectionStatus::notConnected, ConnectionStatus::connected, ConnectionStatus::disConnected,
                            ConnectionStatus::connecting}) {
    if (text == rawValue(status)) return status;
  }
  return std::nullopt;
}

}  // namespace tarn
