// Feeds both readers of replies with streams that no server would send. The first byte says in what arrivals the rest
// comes.

#include "platform/foundation/Utf8.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/wire/MemoryCalls.h"
#include "wire/reply/ConsoleReplyReader.h"
#include "wire/reply/ReplyReader.h"

#include <vector>

namespace {

using namespace tarn;

struct Reading {
  // The text and the elements, with a mark before each.
  std::string shown;
  bool isBroken = false;
  std::size_t taken = 0;
};

void read(ReplyReader& reader, Reading& reading) {
  using enum ReplyType;
  const ReplyResult result = reader.readReply();
  const bool isList =
      result.type == REDIS_REPLY_ARRAY || result.type == REDIS_REPLY_MAP || result.type == REDIS_REPLY_SET;
  require(result.list.has_value() == isList);
  reading.isBroken = reader.lostConnection();
  require(!reading.isBroken || (!result.ok && !result.type && !result.message.empty()));
  reading.shown = result.message;
  for (const Bytes& element : result.list.value_or(std::vector<Bytes>()))
    reading.shown.append(1, '|').append(element.view());
}

void read(ConsoleReplyReader& reader, Reading& reading) {
  reading.shown = reader.readReply();
  reading.isBroken = reader.failure().has_value();
  require(isValidUtf8(reading.shown));
  require(reading.isBroken ? reading.shown.ends_with(*reader.failure()) : reader.type().has_value());
}

template <typename Reader>
void check(std::string_view stream, std::size_t arrival) {
  const auto readingOf = [](std::string_view part, std::size_t size) {
    Reading reading;
    const auto rest = test::MemoryCalls::feed<Reader>(part, size, [&](Reader& reader) { read(reader, reading); });
    reading.taken = part.size() - rest.size();
    return reading;
  };
  // The arrivals change nothing: not what is read, and not how much is taken.
  const Reading whole = readingOf(stream, stream.size() + 1);
  const Reading parts = readingOf(stream, arrival);
  require(parts.isBroken == whole.isBroken && parts.shown == whole.shown);
  require(parts.isBroken || parts.taken == whole.taken);

  // A whole reply reads the same without what stands behind it, and is broken without its last byte.
  if (whole.isBroken || whole.taken == 0) return;
  require(readingOf(stream.substr(0, whole.taken), arrival).shown == whole.shown);
  require(readingOf(stream.substr(0, whole.taken - 1), arrival).isBroken);
}

}  // namespace

void tarn::fuzz(std::string_view input) {
  if (input.empty()) return;
  const std::size_t arrival = std::size_t{1} + static_cast<unsigned char>(input.front());
  check<ReplyReader>(input.substr(1), arrival);
  check<ConsoleReplyReader>(input.substr(1), arrival);
}
