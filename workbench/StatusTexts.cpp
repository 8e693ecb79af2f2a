#include "workbench/StatusTexts.h"

#include "platform/foundation/NSLocalizedString.h"

namespace tarn {

std::string serverStatusText(ConnectionStatus status) {
  switch (status) {
    case ConnectionStatus::notConnected:
      break;
    case ConnectionStatus::connecting:
      return localizedString("Status:Connecting");
    case ConnectionStatus::connected:
      return localizedString("Status:Connected");
    case ConnectionStatus::disConnected:
      return localizedString("Status:DisConnected");
  }
  return localizedString("Status:NotConnected");
}

std::string dealingQueueText(std::size_t operationCount) {
  return localizedString("Dealing Queue:") + std::to_string(operationCount);
}

std::string trafficText(std::uint64_t sentBytes, std::uint64_t receivedBytes) {
  return replacingPlaceholders(localizedString("Sent: {0} byte(s). Received: {1} byte(s)."), std::to_string(sentBytes),
                               std::to_string(receivedBytes));
}

std::string unknownTypeText() {
  return localizedString("Type:");
}

std::string typeText(std::string_view type) {
  return localizedString("Type: ").append(type);
}

std::string unsupportedTypeText(std::string_view word) {
  return localizedString("Type:").append(word) + localizedString(" (Unsupported Type)");
}

std::string newTypeText(std::string_view type) {
  return typeText(type) + localizedString(" (New)");
}

std::string unknownKeySizeText() {
  return localizedString("Key Size:");
}

std::string keySizeText(std::size_t bytes) {
  return localizedString("Key Size: ") + std::to_string(bytes) + localizedString("byte(s)");
}

std::string unknownDataSizeText() {
  return localizedString("Data Size:");
}

std::string noDataSizeText() {
  return localizedString("Data Size: ");
}

std::string dataSizeText(std::size_t bytes) {
  return noDataSizeText() + std::to_string(bytes) + localizedString("byte(s)");
}

std::string dataSizeText(std::size_t bytes, std::size_t count) {
  return dataSizeText(bytes) + localizedString(" Data Count:") + std::to_string(count);
}

std::string ttlToolTip(std::string_view ttl) {
  if (ttl == "-2") return localizedString("(Deleted)");
  if (ttl == "-1") return localizedString("(Persist)");
  return localizedString("Second(s)");
}

std::string keyLabelText(std::string_view charset) {
  return replacingPlaceholder(localizedString("Key({0}):"), "{0}", charset);
}

std::string noKeysText(ConnectionStatus status) {
  switch (status) {
    case ConnectionStatus::connected:
      return localizedString("No keys. Type a part of a key above and press Enter.");
    case ConnectionStatus::connecting:
      return localizedString("Connecting to the server.");
    case ConnectionStatus::notConnected:
    case ConnectionStatus::disConnected:
      break;
  }
  return localizedString("Not connected. Press Reconnect, at the top right, to connect.");
}

std::string countShownText(std::size_t keys) {
  return localizedString("Count Shown:") + std::to_string(keys);
}

}  // namespace tarn
