#include "wire/reply/ReplyResult.h"

#include "platform/foundation/Utf8.h"

namespace tarn {

std::optional<std::string_view> ReplyResult::text() const {
  const auto* const bytes = value ? std::get_if<Bytes>(&*value) : nullptr;
  return bytes != nullptr && isValidUtf8(bytes->view()) ? std::optional(bytes->view()) : std::nullopt;
}

}  // namespace tarn
