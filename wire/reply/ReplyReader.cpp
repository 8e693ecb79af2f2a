#include "wire/reply/ReplyReader.h"

#include "platform/foundation/DecimalNumber.h"
#include "platform/foundation/NSLocalizedString.h"
#include "wire/reply/ReplyMessages.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tarn {

namespace {

std::optional<ReplyResult::Value> lineValue(ReplyType type, std::string_view line) {
  switch (type) {
    case ReplyType::REDIS_REPLY_STATUS:
      return std::string(line);
    case ReplyType::REDIS_REPLY_INTEGER:
      if (const auto number = decimalInteger(line)) return *number;
      return std::nullopt;
    case ReplyType::REDIS_REPLY_DOUBLE:
      if (const auto number = decimalDouble(line)) return *number;
      return std::nullopt;
    case ReplyType::REDIS_REPLY_BOOL:
      if (line == "true") return true;
      if (line == "false") return false;
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

// The capacity at least doubles, but not beyond what the array says it holds; and little is made before it is needed,
// since the count is only the peer's word.
void makeRoomForOne(std::vector<Bytes>& list, std::int64_t stillToCome) {
  if (list.size() < list.capacity()) return;
  const auto needed = list.size() + static_cast<std::size_t>(stillToCome);
  list.reserve(std::min(needed, std::max<std::size_t>(1024, 2 * list.size())));
}

}  // namespace

ReplyResult ReplyReader::lost(std::string message) {
  lost_ = true;
  return ReplyResult::failure(std::move(message));
}

ReplyResult ReplyReader::readReply() {
  const auto type = scanner_.type(0);
  return type ? processItem(*type) : lost(replyFailureMessage(scanner_.failure()));
}

ReplyReader::Replies ReplyReader::readReplies() {
  const auto type = scanner_.type(0);
  if (!type) return {lost(replyFailureMessage(scanner_.failure())), {}};
  if (*type != ReplyType::REDIS_REPLY_ARRAY) return {processItem(*type), {}};
  const auto count = scanner_.count();
  if (!count) return {lost(replyFailureMessage(scanner_.failure())), {}};
  Replies replies;
  for (std::int64_t i = 0; i < *count; ++i) {
    replies.elements.push_back(readReply());
    if (lost_) return {std::move(replies.elements.back()), {}};
  }
  // A missing array is no outcome.
  if (*count < 0) return {ReplyResult::failure(localizedString("Server reply: Error")), {}};
  replies.whole.ok = true;
  replies.whole.type = type;
  return replies;
}

ReplyResult ReplyReader::processItem(ReplyType type) {
  if (isBulk(type)) return processBulkItem(type);
  if (isAggregate(type)) return processMultiBulkItem(type);
  return type == ReplyType::REDIS_ERR ? processUnknownItem() : processLineItem(type);
}

ReplyResult ReplyReader::processLineItem(ReplyType type) {
  const auto line = scanner_.line();
  if (!line) return lost(replyFailureMessage(scanner_.failure()));
  return {.ok = type != ReplyType::REDIS_REPLY_ERROR,
          .message = std::string(*line),
          .value = lineValue(type, *line),
          .list = {},
          .type = type};
}

ReplyResult ReplyReader::processBulkItem(ReplyType type) {
  Bytes value;
  const auto length = scanner_.length();
  if (!length || (*length >= 0 && !scanner_.payload(*length, value))) {
    return lost(replyFailureMessage(scanner_.failure()));
  }
  return {.ok = true, .message = std::to_string(*length), .value = std::move(value), .list = {}, .type = type};
}

ReplyResult ReplyReader::processMultiBulkItem(ReplyType type) {
  const auto count = scanner_.count();
  if (!count) return lost(replyFailureMessage(scanner_.failure()));
  ReplyResult result{
      .ok = true, .message = std::to_string(*count), .value = "0"_bytes, .list = std::vector<Bytes>(), .type = type};
  const bool whole = type == ReplyType::REDIS_REPLY_ARRAY ? appendElements(*count, 0, *result.list)
                                                          : scanner_.skipElements(type, *count, 0);
  if (!whole) return lost(elementFailureMessage());
  if (!result.list->empty()) result.value = result.list->front();
  return result;
}

ReplyResult ReplyReader::processUnknownItem() {
  if (!scanner_.skipUnknown()) return lost(replyFailureMessage(scanner_.failure()));
  return ReplyResult::failure(localizedString("Server reply: Error"));
}

bool ReplyReader::readBulk(Bytes& value) {
  const auto length = scanner_.length();
  return length && (*length < 0 || scanner_.payload(*length, value));
}

bool ReplyReader::appendElements(std::int64_t count, int depth, std::vector<Bytes>& list) {
  if (count > 0 && depth >= ReplyScanner::maxDepth) return false;
  for (std::int64_t i = 0; i < count; ++i) {
    if (depth == 0) makeRoomForOne(list, count - i);
    if (!appendElement(depth + 1, list)) return false;
  }
  return true;
}

bool ReplyReader::appendElement(int depth, std::vector<Bytes>& list) {
  const auto type = scanner_.type(depth);
  if (!type || *type == ReplyType::REDIS_REPLY_ERROR || *type == ReplyType::REDIS_ERR) return false;
  if (isBulk(*type)) return readBulk(list.emplace_back());
  if (isAggregate(*type)) return appendNested(*type, depth, list);
  const auto line = scanner_.line();
  if (!line) return false;
  list.emplace_back(*type == ReplyType::REDIS_REPLY_NIL ? std::string_view() : *line);
  return true;
}

// Arrays are flattened, in order; of maps and sets nothing is kept.
bool ReplyReader::appendNested(ReplyType type, int depth, std::vector<Bytes>& list) {
  const auto count = scanner_.count();
  if (!count) return false;
  return type == ReplyType::REDIS_REPLY_ARRAY ? appendElements(*count, depth, list)
                                              : scanner_.skipElements(type, *count, depth);
}

}  // namespace tarn
