#pragma once

#include "codec/TextCodec.h"
#include "platform/foundation/Base64.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// `\B` and the Base64 of bytes behind it. All pure; any thread.

inline bool isMarked(std::string_view text) {
  return text.starts_with(base64Marker);
}

inline std::string markedBase64(std::string_view bytes) {
  return std::string(base64Marker) + base64Encode(bytes);
}

// Of a text that is marked; nothing if no Base64 follows.
inline std::optional<Bytes> bytesOfMarked(std::string_view text) {
  return base64Decode(text.substr(base64Marker.size()));
}

}  // namespace tarn
