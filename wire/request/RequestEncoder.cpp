#include "wire/request/RequestEncoder.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string_view>

namespace tarn {

namespace {

constexpr std::string_view lineEnd = "\r\n";

std::size_t digitsOf(std::size_t number) {
  std::size_t digits = 1;
  for (; number >= 10; number /= 10)
    ++digits;
  return digits;
}

// "*3\r\n" or "$11\r\n".
char* putHeader(char* out, char mark, std::size_t number) {
  *out++ = mark;
  out = std::to_chars(out, out + digitsOf(number), number).ptr;
  return std::copy(lineEnd.begin(), lineEnd.end(), out);
}

// `word(i)` is the word at i. The size is known before the first byte is put, so the request is made in one block.
template <typename Word>
Bytes encode(std::size_t count, const Word& word) {
  constexpr std::size_t headerSize = 1 + lineEnd.size();
  std::size_t size = headerSize + digitsOf(count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t length = word(i).size();
    size += headerSize + digitsOf(length) + length + lineEnd.size();
  }
  Bytes request;
  request.resize(size);
  char* out = putHeader(request.data(), '*', count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::string_view bytes = word(i);
    out = putHeader(out, '$', bytes.size());
    out = std::copy(bytes.begin(), bytes.end(), out);
    out = std::copy(lineEnd.begin(), lineEnd.end(), out);
  }
  return request;
}

}  // namespace

Bytes encodeRequest(RedisCommand command, Arguments args) {
  if (command == RedisCommand::clusterNodes) return encodeRequest(RedisCommand::raw, {"cluster", "nodes"});
  if (command == RedisCommand::raw) return encode(args.size(), [&](std::size_t i) { return args[i]; });
  return encode(args.size() + 1, [&](std::size_t i) { return i == 0 ? commandName(command) : args[i - 1]; });
}

}  // namespace tarn
