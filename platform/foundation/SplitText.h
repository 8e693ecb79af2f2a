#pragma once

#include <string_view>
#include <vector>

namespace tarn {

// The parts between the delimiters, without the empty ones. They point into `text`. Pure; any thread.
std::vector<std::string_view> splitText(std::string_view text, std::string_view delimiter);

}  // namespace tarn
