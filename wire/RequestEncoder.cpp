#include "wire/RequestEncoder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

namespace tarn {

namespace {

// "*3\r\n" or "$11\r\n".
class Header final {
public:
  Header(char mark, std::size_t number) {
    text_[0] = mark;
    char* const end = std::to_chars(text_.data() + 1, text_.data() + text_.size(), number).ptr;
    end[0] = '\r';
    end[1] = '\n';
    size_ = static_cast<std::size_t>(end - text_.data()) + 2;
  }
  std::string_view view() const { return {text_.data(), size_}; }

private:
  std::array<char, 24> text_;
  std::size_t size_;
};

}  // namespace

Bytes encodeRequest(std::span<const std::string_view> words) {
  std::size_t size = Header('*', words.size()).view().size();
  for (const std::string_view word : words)
    size += Header('$', word.size()).view().size() + word.size() + 2;

  Bytes request;
  request.resize(size);
  char* out = request.data();
  const auto put = [&out](std::string_view part) { out = std::copy(part.begin(), part.end(), out); };
  put(Header('*', words.size()).view());
  for (const std::string_view word : words) {
    put(Header('$', word.size()).view());
    put(word);
    put("\r\n");
  }
  return request;
}

Bytes encodeRequest(RedisCommand command, const std::vector<Bytes>& args) {
  if (command == RedisCommand::clusterNodes) {
    constexpr std::array<std::string_view, 2> words{"cluster", "nodes"};
    return encodeRequest(words);
  }
  std::vector<std::string_view> words;
  words.reserve(args.size() + 1);
  if (command != RedisCommand::raw) words.push_back(commandName(command));
  for (const Bytes& arg : args)
    words.push_back(arg.view());
  return encodeRequest(words);
}

}  // namespace tarn
