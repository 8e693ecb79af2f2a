#include "platform/foundation/SplitText.h"

#include <algorithm>

namespace tarn {

std::vector<std::string_view> splitText(std::string_view text, std::string_view delimiter) {
  std::vector<std::string_view> parts;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(delimiter), text.size());
    if (end > 0) parts.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + delimiter.size(), text.size()));
  }
  return parts;
}

}  // namespace tarn
