#include "wire/reply/ReplyScanner.h"

#include "platform/foundation/DecimalNumber.h"
#include "platform/foundation/Utf8.h"

#include <algorithm>
#include <cstring>

namespace tarn {

namespace {

// The longest status or error that a server makes; a line that goes on for ever ends here.
constexpr std::size_t maxLine = std::size_t{512} * 1024 * 1024;

// How much of a payload is believed in before its bytes arrive.
constexpr std::size_t firstPart = std::size_t{64} * 1024;

ReplyType typeOf(char byte) {
  switch (byte) {
    case '-':
      return ReplyType::REDIS_REPLY_ERROR;
    case '+':
      return ReplyType::REDIS_REPLY_STATUS;
    case ':':
      return ReplyType::REDIS_REPLY_INTEGER;
    case ',':
      return ReplyType::REDIS_REPLY_DOUBLE;
    case '_':
      return ReplyType::REDIS_REPLY_NIL;
    case '$':
      return ReplyType::REDIS_REPLY_STRING;
    case '*':
      return ReplyType::REDIS_REPLY_ARRAY;
    case '%':
      return ReplyType::REDIS_REPLY_MAP;
    case '~':
      return ReplyType::REDIS_REPLY_SET;
    case '#':
      return ReplyType::REDIS_REPLY_BOOL;
    case '=':
      return ReplyType::REDIS_REPLY_VERB;
    default:
      return ReplyType::REDIS_ERR;
  }
}

}  // namespace

ReplyScanner::~ReplyScanner() {
  takeOffParsed();
}

bool ReplyScanner::takeOffParsed() {
  const auto parsed = static_cast<std::size_t>(next_ - start_);
  start_ = next_;
  return parsed == 0 || stream_.takeOff(parsed);
}

// All that was peeked at has been parsed: it goes, and the next window comes.
bool ReplyScanner::refill() {
  if (!takeOffParsed()) return false;
  const std::string_view window = stream_.peek();
  start_ = next_ = window.data();
  end_ = window.data() + window.size();
  return !window.empty();
}

bool ReplyScanner::fail(Piece piece, Fault fault) {
  failure_ = {piece, fault};
  return false;
}

std::optional<ReplyType> ReplyScanner::type(int depth) {
  for (;;) {
    if (!hasByte()) {
      fail(Piece::type, Fault::lost);
      return std::nullopt;
    }
    typeByte_ = *next_++;
    if (!isAscii(typeByte_)) {
      fail(Piece::type, Fault::undecodable);
      return std::nullopt;
    }
    if (typeByte_ != '>' && typeByte_ != '|') return typeOf(typeByte_);

    const auto elements = count();
    const ReplyType like = typeByte_ == '|' ? ReplyType::REDIS_REPLY_MAP : ReplyType::REDIS_REPLY_SET;
    if (!elements || !skipElements(like, *elements, depth)) return std::nullopt;
  }
}

std::optional<std::string_view> ReplyScanner::lineAt(Piece piece) {
  const char* const first = next_;
  for (const char* byte = first; byte != end_; ++byte) {
    if (!isAscii(*byte)) {
      fail(piece, Fault::undecodable);
      return std::nullopt;
    }
    if (*byte == '\n' && byte != first && byte[-1] == '\r') {
      next_ = byte + 1;
      return std::string_view(first, static_cast<std::size_t>(byte - 1 - first));
    }
  }
  return longLine(piece);
}

std::optional<std::string_view> ReplyScanner::longLine(Piece piece) {
  longLine_.clear();
  while (longLine_.size() <= maxLine) {
    if (!hasByte()) break;
    const char* const first = next_;
    while (next_ != end_) {
      const char byte = *next_++;
      if (!isAscii(byte)) {
        fail(piece, Fault::undecodable);
        return std::nullopt;
      }
      const bool afterReturn = next_ - first > 1 ? next_[-2] == '\r' : longLine_.ends_with('\r');
      if (byte == '\n' && afterReturn) {
        longLine_.append(first, next_);
        return std::string_view(longLine_).substr(0, longLine_.size() - 2);
      }
    }
    longLine_.append(first, next_);
  }
  fail(piece, Fault::lost);
  return std::nullopt;
}

std::optional<std::int64_t> ReplyScanner::number(Piece piece, std::int64_t limit) {
  const auto text = lineAt(piece);
  if (!text) return std::nullopt;
  const auto value = decimalInteger(*text);
  if (!value || *value > limit) {
    fail(piece, Fault::unreadable);
    return std::nullopt;
  }
  return value;
}

bool ReplyScanner::payload(std::int64_t length, Bytes& value) {
  const auto size = static_cast<std::size_t>(length);
  if (static_cast<std::size_t>(end_ - next_) < size + 2) return largePayload(size, value);
  value = Bytes(std::string_view(next_, size));
  next_ += size + 2;
  return true;
}

// Its beginning is in the window; the rest is received straight into place. The block grows with what has arrived,
// since the length is only the peer's word.
bool ReplyScanner::largePayload(std::size_t length, Bytes& value) {
  std::size_t have = std::min(length, static_cast<std::size_t>(end_ - next_));
  value = Bytes(std::string_view(next_, have));
  next_ += have;
  if (have < length && !takeOffParsed()) return fail(Piece::payload, Fault::lost);
  while (have < length) {
    if (have == value.size()) value.resize(std::min(length, std::max(firstPart, 2 * have)));
    const std::size_t count = stream_.receive(value.data() + have, value.size() - have);
    if (count == 0) return fail(Piece::payload, Fault::lost);
    have += count;
  }
  return skipBytes(2);
}

bool ReplyScanner::skipBytes(std::size_t count) {
  const std::size_t inWindow = std::min(count, static_cast<std::size_t>(end_ - next_));
  next_ += inWindow;
  if (inWindow == count) return true;
  // Takes off bytes as they arrive, without a look at them.
  if (!takeOffParsed() || !stream_.takeOff(count - inWindow)) return fail(Piece::payload, Fault::lost);
  return true;
}

bool ReplyScanner::skipPayload() {
  const auto size = length();
  if (!size) return false;
  return *size < 0 || skipBytes(static_cast<std::size_t>(*size) + 2);
}

bool ReplyScanner::skipUnknown() {
  return unknownLine().has_value();
}

std::optional<std::string> ReplyScanner::unknownLine() {
  if (typeByte_ != '!') {
    const auto text = line();
    return text ? std::optional<std::string>(*text) : std::nullopt;
  }
  const auto size = length();
  if (!size || (*size >= 0 && !skipBytes(static_cast<std::size_t>(*size) + 2))) return std::nullopt;
  return std::to_string(*size);
}

bool ReplyScanner::skipElements(ReplyType type, std::int64_t count, int depth) {
  return skipReplies(type == ReplyType::REDIS_REPLY_MAP ? 2 * count : count, depth);
}

bool ReplyScanner::skipReplies(std::int64_t count, int depth) {
  if (count > 0 && depth >= maxDepth) return fail(Piece::countLine, Fault::tooDeep);
  for (std::int64_t i = 0; i < count; ++i) {
    if (!skipReply(depth + 1)) return false;
  }
  return true;
}

bool ReplyScanner::skipReply(int depth) {
  const auto kind = type(depth);
  if (!kind) return false;
  if (isBulk(*kind)) return skipPayload();
  if (isAggregate(*kind)) {
    const auto elements = count();
    return elements && skipElements(*kind, *elements, depth);
  }
  return *kind == ReplyType::REDIS_ERR ? skipUnknown() : line().has_value();
}

}  // namespace tarn
