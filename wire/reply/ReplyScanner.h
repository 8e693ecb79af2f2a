#pragma once

#include "platform/foundation/Bytes.h"
#include "wire/reply/ReplyResult.h"
#include "wire/stream/ByteStream.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// Takes one reply off a stream, piece by piece: type bytes, lines, lengths with their payloads, counts. What the pieces
// mean is the affair of whoever asks for them.
//
// It looks at what has arrived, parses in place, and takes exactly the bytes that it handed out off the stream, so that
// nothing is kept between one reply and the next. After a piece has failed no other may be asked for.
//
// Lives for one reply, on the thread that holds the connection's lock.
class ReplyScanner final {
public:
  // Arrays and maps inside one another; what is deeper can't be read.
  static constexpr int maxDepth = 128;
  static constexpr std::int64_t maxCount = std::int64_t{1} << 31;
  static constexpr std::int64_t maxLength = std::int64_t{1} << 32;

  enum class Piece { type, line, lengthLine, payload, countLine };
  enum class Fault {
    lost,         // no more bytes came
    undecodable,  // a byte that can't stand there
    unreadable,   // no number, or one over the limit
    tooDeep,
  };
  struct Failure {
    Piece piece = Piece::type;
    Fault fault = Fault::lost;
  };

  explicit ReplyScanner(ByteStream& stream) : stream_(stream) {}
  ReplyScanner(const ReplyScanner&) = delete;
  ReplyScanner& operator=(const ReplyScanner&) = delete;
  // Takes the last bytes parsed off the stream.
  ~ReplyScanner();

  // Why the last piece failed.
  Failure failure() const { return failure_; }

  // The type of the reply, or element, that comes next. What the server pushes in between, and attributes, are dropped.
  // REDIS_ERR for a byte that begins no reply; skipUnknown() then drops what belongs to it, or line() gives it.
  std::optional<ReplyType> type(int depth);

  // The text up to CR LF. Valid until the next piece.
  std::optional<std::string_view> line() { return lineAt(Piece::line); }

  // The length line of a bulk; negative for a missing value, which has no payload.
  std::optional<std::int64_t> length() { return number(Piece::lengthLine, maxLength); }
  // The payload behind a length line, and the two bytes that end it. `value` is empty before.
  bool payload(std::int64_t length, Bytes& value);

  // The count line of an array, map or set.
  std::optional<std::int64_t> count() { return number(Piece::countLine, maxCount); }

  // Drops the elements behind the count line of a map, where each counts twice, or a set.
  bool skipElements(ReplyType type, std::int64_t count, int depth);
  // Drops what belongs to a byte that begins no reply.
  bool skipUnknown();
  // The same, and gives the text behind the byte, up to CR LF.
  std::optional<std::string> unknownLine();

private:
  // Bytes parsed one at a time: the fast path is in the header, where the next one has arrived already.
  bool hasByte() { return next_ != end_ || refill(); }
  bool refill();
  bool takeOffParsed();
  bool fail(Piece piece, Fault fault);

  std::optional<std::string_view> lineAt(Piece piece);
  std::optional<std::string_view> longLine(Piece piece);
  std::optional<std::int64_t> number(Piece piece, std::int64_t limit);

  bool largePayload(std::size_t length, Bytes& value);
  bool skipPayload();
  bool skipBytes(std::size_t count);
  bool skipReplies(std::int64_t count, int depth);
  bool skipReply(int depth);

  ByteStream& stream_;
  Failure failure_;
  // The window: parsed up to next_, of which nothing before start_ is left in the stream.
  const char* start_ = nullptr;
  const char* next_ = nullptr;
  const char* end_ = nullptr;
  // A line that lies in more than one window.
  std::string longLine_;
  char typeByte_ = 0;
};

}  // namespace tarn
