#pragma once

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

namespace tarn {

// The words of a command, borrowed until the call that gets them returns: a value of a million rows isn't copied into
// its command.
class Arguments final {
public:
  Arguments(std::initializer_list<std::string_view> words) : words_(words.begin(), words.size()) {}
  Arguments(const std::vector<std::string_view>& words) : words_(words) {}

  std::size_t size() const { return words_.size(); }
  bool empty() const { return words_.empty(); }
  std::string_view operator[](std::size_t index) const { return words_[index]; }

private:
  std::span<const std::string_view> words_;
};

}  // namespace tarn
