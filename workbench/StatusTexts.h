#pragma once

#include "wire/stream/ConnectionStatus.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// What the labels of a tab say, in the desktop's language. Sizes count bytes. All pure; any thread.

std::string serverStatusText(ConnectionStatus status);
std::string dealingQueueText(std::size_t operationCount);
// How far work that is waited for has come.
std::string trafficText(std::uint64_t sentBytes, std::uint64_t receivedBytes);

// The type of the value: nothing known; a type, or the server's word while it is handled; a word that no pane shows.
std::string unknownTypeText();
std::string typeText(std::string_view type);
std::string unsupportedTypeText(std::string_view word);
// A key that isn't on the server yet.
std::string newTypeText(std::string_view type);

std::string unknownKeySizeText();
std::string keySizeText(std::size_t bytes);

std::string unknownDataSizeText();
// `GET` failed.
std::string noDataSizeText();
std::string dataSizeText(std::size_t bytes);
std::string dataSizeText(std::size_t bytes, std::size_t count);

// The tool tip of the TTL: "(Deleted)", "(Persist)" or "Second(s)".
std::string ttlToolTip(std::string_view ttl);

std::string keyLabelText(std::string_view charset);
// What an empty list of keys says to do next.
std::string noKeysText(ConnectionStatus status);
std::string countShownText(std::size_t keys);

}  // namespace tarn
