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

// How many words there are, and the one at each place, as they are sent.
std::size_t wordCount(RedisCommand command, Arguments args) {
  if (command == RedisCommand::clusterNodes) return 2;
  return args.size() + (command == RedisCommand::raw ? 0 : 1);
}

std::string_view wordAt(std::size_t index, RedisCommand command, Arguments args) {
  if (command == RedisCommand::clusterNodes) return index == 0 ? "cluster" : "nodes";
  if (command == RedisCommand::raw) return args[index];
  return index == 0 ? commandName(command) : args[index - 1];
}

// The size is known before the first byte is put, so that requests are made in one block.
std::size_t sizeOf(RedisCommand command, Arguments args) {
  constexpr std::size_t headerSize = 1 + lineEnd.size();
  const std::size_t count = wordCount(command, args);
  std::size_t size = headerSize + digitsOf(count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t length = wordAt(i, command, args).size();
    size += headerSize + digitsOf(length) + length + lineEnd.size();
  }
  return size;
}

char* putRequest(char* out, RedisCommand command, Arguments args) {
  const std::size_t count = wordCount(command, args);
  out = putHeader(out, '*', count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::string_view bytes = wordAt(i, command, args);
    out = putHeader(out, '$', bytes.size());
    out = std::copy(bytes.begin(), bytes.end(), out);
    out = std::copy(lineEnd.begin(), lineEnd.end(), out);
  }
  return out;
}

}  // namespace

Bytes encodeRequest(RedisCommand command, Arguments args) {
  Bytes request;
  request.resize(sizeOf(command, args));
  putRequest(request.data(), command, args);
  return request;
}

Bytes encodeRequests(std::span<const Command> commands) {
  std::size_t size = 0;
  for (const Command& command : commands)
    size += sizeOf(command.name, command.words);
  Bytes requests;
  requests.resize(size);
  char* out = requests.data();
  for (const Command& command : commands)
    out = putRequest(out, command.name, command.words);
  return requests;
}

}  // namespace tarn
