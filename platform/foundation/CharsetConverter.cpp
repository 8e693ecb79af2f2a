#include "platform/foundation/CharsetConverter.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace tarn {
namespace {

constexpr auto failed = static_cast<std::size_t>(-1);
constexpr const char* utf8Name = "UTF-8";

// One descriptor of iconv, of one thread.
class Converter final {
public:
  Converter(const char* to, const char* from) : to_(to), from_(from), descriptor_(iconv_open(to, from)) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (isOpen()) iconv_close(descriptor_);
  }

  bool converts(std::string_view to, std::string_view from) const { return to_ == to && from_ == from; }

  std::optional<std::string> convert(std::string_view input) {
    std::string output;
    if (input.empty()) return output;
    if (!isOpen()) return std::nullopt;
    if (convertAll(input, output)) return output;
    iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
    return std::nullopt;
  }

private:
  bool isOpen() const { return reinterpret_cast<std::uintptr_t>(descriptor_) != static_cast<std::uintptr_t>(-1); }

  bool convertAll(std::string_view input, std::string& output) {
    // iconv takes its input through a pointer to characters that it doesn't change.
    char* in = const_cast<char*>(input.data());
    std::size_t inLeft = input.size();
    while (inLeft > 0) {
      const std::size_t result = step(&in, &inLeft, output);
      // A positive count tells of characters that were replaced by similar ones.
      if (result != 0 && (result != failed || errno != E2BIG)) return false;
    }
    return closeShiftState(output);
  }

  bool closeShiftState(std::string& output) {
    std::size_t result = failed;
    do {
      result = step(nullptr, nullptr, output);
    } while (result == failed && errno == E2BIG);
    return result == 0;
  }

  // One call of iconv, whose output is appended.
  std::size_t step(char** in, std::size_t* inLeft, std::string& output) {
    std::array<char, 2048> chunk;
    char* out = chunk.data();
    std::size_t outLeft = chunk.size();
    const std::size_t result = iconv(descriptor_, in, inLeft, &out, &outLeft);
    const int error = errno;
    output.append(chunk.data(), chunk.size() - outLeft);
    errno = error;
    return result;
  }

  const std::string to_;
  const std::string from_;
  const iconv_t descriptor_;
};

// This thread's converter between the two.
Converter& converter(const char* to, const char* from) {
  thread_local std::vector<std::unique_ptr<Converter>> converters;
  auto known = std::find_if(converters.begin(), converters.end(),
                            [to, from](const auto& converter) { return converter->converts(to, from); });
  if (known == converters.end()) known = converters.insert(known, std::make_unique<Converter>(to, from));
  // The one that was used last comes first, since it is likely to be used next.
  std::swap(converters.front(), *known);
  return *converters.front();
}

}  // namespace

std::optional<std::string> convertToUtf8(std::string_view bytes, const char* charset) {
  return converter(utf8Name, charset).convert(bytes);
}

std::optional<std::string> convertFromUtf8(std::string_view text, const char* charset) {
  return converter(charset, utf8Name).convert(text);
}

}  // namespace tarn
