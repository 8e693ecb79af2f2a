#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// Big5-E, which iconv doesn't have. Strict; any thread. Texts are UTF-8.
std::optional<std::string> big5EToText(std::string_view bytes);
// `text` must be valid UTF-8. A character that has two pairs gets the first.
std::optional<std::string> textToBig5E(std::string_view text);

}  // namespace tarn
