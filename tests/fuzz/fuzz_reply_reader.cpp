// Feeds the reply reader with streams that no server would send. The first byte says in what arrivals the rest comes.

#include "tests/wire/MemoryCalls.h"
#include "wire/reply/ReplyReader.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using namespace tarn;

void require(bool held) {
  if (!held) std::abort();
}

struct Reading {
  ReplyResult result;
  bool lost = false;
  std::size_t taken = 0;
};

Reading read(std::string_view stream, std::size_t arrival) {
  test::MemoryCalls calls(stream, arrival);
  const auto socket = calls.makeSocket();
  Reading reading;
  {
    ReplyReader reader(*socket);
    reading.result = reader.readReply();
    reading.lost = reader.lostConnection();
  }
  reading.taken = stream.size() - calls.rest().size();
  return reading;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view stream(reinterpret_cast<const char*>(data + 1), size - 1);
  const Reading whole = read(stream, stream.size() + 1);
  require(whole.result.list.has_value() ==
          (whole.result.type == ReplyType::REDIS_REPLY_ARRAY || whole.result.type == ReplyType::REDIS_REPLY_MAP ||
           whole.result.type == ReplyType::REDIS_REPLY_SET));
  require(!whole.lost || (!whole.result.ok && !whole.result.type && !whole.result.message.empty()));

  // The arrivals change nothing: not what is read, and not how much is taken.
  const Reading parts = read(stream, std::size_t{1} + data[0]);
  require(parts.lost == whole.lost && parts.result.ok == whole.result.ok);
  require(parts.result.message == whole.result.message && parts.result.list == whole.result.list);
  require(parts.lost || parts.taken == whole.taken);

  // A whole reply reads the same without what stands behind it, and is broken without its last byte.
  if (!whole.lost && whole.taken > 0) {
    require(read(stream.substr(0, whole.taken), size).result.message == whole.result.message);
    const Reading cut = read(stream.substr(0, whole.taken - 1), size);
    require(cut.lost);
  }
  return 0;
}
