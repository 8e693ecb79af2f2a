#include "wire/reply/ConsoleReplyReader.h"

#include "codec/TextCodec.h"
#include "platform/foundation/Base64.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/Utf8.h"
#include "wire/reply/ReplyMessages.h"

#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace tarn {

namespace {

constexpr std::string_view emptyList = "(empty list or set)";

// How deep the elements of an array lie, and those of an array in it.
constexpr int elementDepth = 1;
constexpr int nestedDepth = 2;

std::string_view linePrefix(ReplyType type) {
  switch (type) {
    case ReplyType::REDIS_REPLY_INTEGER:
      return "(int)";
    case ReplyType::REDIS_REPLY_DOUBLE:
      return "(double)";
    case ReplyType::REDIS_REPLY_NIL:
      return "(nil)";
    case ReplyType::REDIS_REPLY_BOOL:
      return "(bool)";
    default:
      return {};
  }
}

std::string failureText(ReplyScanner::Failure failure) {
  // What is too deep to read gets the message of a count that can't be read.
  if (failure.fault == ReplyScanner::Fault::tooDeep) {
    failure = {ReplyScanner::Piece::countLine, ReplyScanner::Fault::unreadable};
  }
  const bool isLostType = failure.piece == ReplyScanner::Piece::type && failure.fault == ReplyScanner::Fault::lost;
  return (isLostType ? "" : "(Err) ") + replyFailureMessage(failure);
}

}  // namespace

std::string ConsoleReplyReader::readReply() {
  type_ = readConsoleReplyType(0);
  if (!type_) {
    fail();
  } else if (isAggregate(*type_)) {
    processConsoleMultiBulkItem(*type_);
  } else if (*type_ == ReplyType::REDIS_ERR) {
    processUnknownItem();
  } else {
    processConsoleItem(*type_);
  }
  return std::move(text_);
}

// Of a line or a bulk.
bool ConsoleReplyReader::processConsoleItem(ReplyType type) {
  return isBulk(type) ? processConsoleBulkItem() : processConsoleLineItem(type);
}

bool ConsoleReplyReader::processConsoleLineItem(ReplyType type) {
  const auto line = scanner_.line();
  if (!line) return fail();
  text_ += linePrefix(type);
  text_ += *line;
  return true;
}

bool ConsoleReplyReader::processConsoleBulkItem() {
  const auto length = scanner_.length();
  if (!length) return fail();
  if (*length < 0) {
    text_ += "(nil)";
    return true;
  }
  Bytes value;
  if (!scanner_.payload(*length, value)) return fail();
  const std::string_view bytes = value.view();
  if (!isValidUtf8(bytes)) {
    text_ += base64Marker;
    text_ += base64Encode(bytes);
    return true;
  }
  if (bytes.starts_with(base64Marker)) text_ += '\\';
  text_ += bytes;
  return true;
}

bool ConsoleReplyReader::processConsoleMultiBulkItem(ReplyType type) {
  const auto count = scanner_.count();
  if (!count) return fail();
  if (type != ReplyType::REDIS_REPLY_ARRAY) {
    text_ += "(map)";
    return scanner_.skipElements(type, *count, 0) || fail();
  }
  for (std::int64_t i = 1; i <= *count; ++i) {
    text_ += '\n';
    addNumber(i);
    if (!processConsoleElement()) return false;
  }
  if (*count < 1) text_ += emptyList;
  return true;
}

bool ConsoleReplyReader::processConsoleElement() {
  const auto type = readConsoleReplyType(elementDepth);
  if (!type) return fail();
  if (isAggregate(*type)) return processConsoleNestedItem(*type);
  if (*type == ReplyType::REDIS_ERR) return scanner_.skipUnknown() || fail();
  text_ += '\t';
  return processConsoleItem(*type);
}

bool ConsoleReplyReader::processConsoleNestedItem(ReplyType type) {
  const auto count = scanner_.count();
  if (!count) return fail();
  const std::size_t start = text_.size();
  if (*count < 1) text_ += emptyList;
  for (std::int64_t j = 1; j <= *count; ++j) {
    text_ += '\t';
    addNumber(j);
    if (!processConsoleNestedElement(start)) return false;
    text_ += '\n';
  }
  // A map says how many pairs it has, so only half of it was shown.
  if (type != ReplyType::REDIS_REPLY_MAP) return true;
  return scanner_.skipElements(ReplyType::REDIS_REPLY_SET, *count, elementDepth) || fail();
}

// What is deeper, or unknown, takes the place of all that the nested array has shown since `start`.
bool ConsoleReplyReader::processConsoleNestedElement(std::size_t start) {
  const auto type = readConsoleReplyType(nestedDepth);
  if (!type) return fail();
  if (!isAggregate(*type) && *type != ReplyType::REDIS_ERR) {
    text_ += '\t';
    return processConsoleItem(*type);
  }
  text_.resize(start);
  text_ += localizedString("(Err) Server reply: Error");
  return isAggregate(*type) ? skipNested(*type, nestedDepth) : scanner_.skipUnknown() || fail();
}

bool ConsoleReplyReader::processUnknownItem() {
  const auto line = scanner_.unknownLine();
  if (!line) return fail();
  text_ += *line;
  return true;
}

bool ConsoleReplyReader::skipNested(ReplyType type, int depth) {
  const auto count = scanner_.count();
  return (count && scanner_.skipElements(type, *count, depth)) || fail();
}

void ConsoleReplyReader::addNumber(std::int64_t number) {
  std::array<char, 24> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text_.append(digits.data(), end);
  text_ += ')';
}

bool ConsoleReplyReader::fail() {
  failure_ = failureText(scanner_.failure());
  if (text_.ends_with(')')) text_ += '\t';
  text_ += *failure_;
  return false;
}

}  // namespace tarn
