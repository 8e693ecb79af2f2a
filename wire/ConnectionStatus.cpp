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

}  // namespace tarn
