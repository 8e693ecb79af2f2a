// Feeds both readers of replies with streams that no server would send. The first byte says in what arrivals the rest
// comes.

#include "platform/foundation/Utf8.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/wire/MemoryCalls.h"
#include "wire/reply/ConsoleReplyReader.h"
#include "wire/reply/ReplyReader.h"

#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace tarn;

struct Reading {
  std::string text;
  std::vector<Bytes> list;
  bool isBroken = false;
  std::size_t taken = 0;
};

void read(ReplyReader& reader, Reading& reading) {
  const ReplyResult result = reader.readReply();
  reading = {result.message, result.list.value_or(std::vector<Bytes>()), reader.lostConnection()};
  require(result.list.has_value() ==
          (result.type == ReplyType::REDIS_REPLY_ARRAY || result.type == ReplyType::REDIS_REPLY_MAP ||
           result.type == ReplyType::REDIS_REPLY_SET));
  require(!reading.isBroken || (!result.ok && !result.type && !result.message.empty()));
}

void read(ConsoleReplyReader& reader, Reading& reading) {
  reading = {reader.readReply(), {}, reader.failure().has_value()};
  require(isValidUtf8(reading.text));
  require(reading.isBroken ? reading.text.ends_with(*reader.failure()) : reader.type().has_value());
}

template <typename Reader>
Reading readingOf(std::string_view stream, std::size_t arrival) {
  Reading reading;
  const auto rest = test::MemoryCalls::feed<Reader>(stream, arrival, [&](Reader& reader) { read(reader, reading); });
  reading.taken = stream.size() - rest.size();
  return reading;
}

template <typename Reader>
void check(std::string_view stream, std::size_t arrival) {
  const Reading whole = readingOf<Reader>(stream, stream.size() + 1);

  // The arrivals change nothing: not what is read, and not how much is taken.
  const Reading parts = readingOf<Reader>(stream, arrival);
  require(parts.isBroken == whole.isBroken && parts.text == whole.text && parts.list == whole.list);
  require(parts.isBroken || parts.taken == whole.taken);

  // A whole reply reads the same without what stands behind it, and is broken without its last byte.
  if (whole.isBroken || whole.taken == 0) return;
  require(readingOf<Reader>(stream.substr(0, whole.taken), arrival).text == whole.text);
  require(readingOf<Reader>(stream.substr(0, whole.taken - 1), arrival).isBroken);
}

}  // namespace

void tarn::fuzz(std::string_view input) {
  if (input.empty()) return;
  const std::size_t arrival = std::size_t{1} + static_cast<unsigned char>(input.front());
  check<ReplyReader>(input.substr(1), arrival);
  check<ConsoleReplyReader>(input.substr(1), arrival);
}
