// Feeds the console with lines and replies that nobody would send. The first byte says in what arrivals a reply comes;
// the rest is taken for a line, and for a reply.

#include "platform/foundation/Utf8.h"
#include "tests/wire/MemoryCalls.h"
#include "wire/console/ConsoleTokeniser.h"
#include "wire/reply/ConsoleReplyReader.h"

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace tarn;

void require(bool held) {
  if (!held) std::abort();
}

struct Reading {
  std::string text;
  std::optional<ReplyType> type;
  std::optional<std::string> failure;
  std::size_t taken = 0;
};

Reading read(std::string_view stream, std::size_t arrival) {
  test::MemoryCalls calls(stream, arrival);
  const auto socket = calls.makeSocket();
  Reading reading;
  {
    ConsoleReplyReader reader(*socket);
    reading.text = reader.readReply();
    reading.type = reader.type();
    reading.failure = reader.failure();
  }
  reading.taken = stream.size() - calls.rest().size();
  return reading;
}

void checkReply(std::string_view stream, std::size_t arrival) {
  const Reading whole = read(stream, stream.size() + 1);
  require(isValidUtf8(whole.text));
  require(whole.failure ? whole.text.ends_with(*whole.failure) : whole.type.has_value());

  // The arrivals change nothing: not what is shown, and not how much is taken.
  const Reading parts = read(stream, arrival);
  require(parts.text == whole.text && parts.failure == whole.failure);
  require(parts.failure || parts.taken == whole.taken);

  // A whole reply shows the same without what stands behind it, and is broken without its last byte.
  if (whole.failure || whole.taken == 0) return;
  require(read(stream.substr(0, whole.taken), arrival).text == whole.text);
  require(read(stream.substr(0, whole.taken - 1), arrival).failure.has_value());
}

// Typed in quotes, each word comes back, but for those that hold a quote of their own.
void checkLine(std::string_view line) {
  const auto tokens = consoleTokens(line);
  require(line.find(consoleCommandWord(line)) != std::string_view::npos);
  if (!tokens) return;
  std::string typed;
  for (const std::string& token : *tokens) {
    if (token.find('"') != std::string::npos) return;
    typed += " \"";
    for (const char character : token)
      typed += character == '\\' ? std::string("\\\\") : std::string(1, character);
    typed += '"';
  }
  require(consoleTokens(typed) == tokens);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view input(reinterpret_cast<const char*>(data + 1), size - 1);
  checkLine(input);
  checkReply(input, std::size_t{1} + data[0]);
  return 0;
}
