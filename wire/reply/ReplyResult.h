#pragma once

#include "platform/foundation/Bytes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tarn {

// The kind of a reply, by its first byte on the wire. REDIS_ERR is none: the mark of a byte that begins no reply.
enum class ReplyType : std::uint8_t {
  REDIS_REPLY_ERROR,    // -
  REDIS_REPLY_STATUS,   // +
  REDIS_REPLY_INTEGER,  // :
  REDIS_REPLY_DOUBLE,   // ,
  REDIS_REPLY_NIL,      // _
  REDIS_REPLY_STRING,   // $
  REDIS_REPLY_ARRAY,    // *
  REDIS_REPLY_MAP,      // %
  REDIS_REPLY_SET,      // ~
  REDIS_REPLY_BOOL,     // #
  REDIS_REPLY_VERB,     // =
  REDIS_ERR,
};

// One that is a length line and its payload.
constexpr bool isBulk(ReplyType type) {
  return type == ReplyType::REDIS_REPLY_STRING || type == ReplyType::REDIS_REPLY_VERB;
}

// One that is a count line and elements.
constexpr bool isAggregate(ReplyType type) {
  return type == ReplyType::REDIS_REPLY_ARRAY || type == ReplyType::REDIS_REPLY_MAP ||
         type == ReplyType::REDIS_REPLY_SET;
}

// The outcome of one command.
struct ReplyResult {
  using Value = std::variant<std::string, std::int64_t, double, bool, Bytes>;

  // A well-formed reply other than an error reply was read.
  bool ok = false;
  // If not ok, the text for the user: the server's error line or the client's own message. If ok, the reply's line.
  std::string message;
  std::optional<Value> value;
  // The flat elements of an array reply; absent for all other kinds.
  std::optional<std::vector<Bytes>> list;
  // Absent when the reader failed.
  std::optional<ReplyType> type;

  // A command that got no reply, or none that can be read.
  static ReplyResult failure(std::string message) {
    ReplyResult result;
    result.message = std::move(message);
    return result;
  }

  // The value's bytes as text, valid as long as they are; nothing if it has none, or they aren't UTF-8.
  std::optional<std::string_view> text() const;
};

}  // namespace tarn
