#pragma once

#include "platform/foundation/Bytes.h"
#include "wire/reply/ReplyResult.h"
#include "wire/reply/ReplyScanner.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tarn {

// Reads one reply off a stream and makes the text of it that the console shows. Lives for one reply, on the thread that
// holds the connection's lock.
class ConsoleReplyReader final {
public:
  explicit ConsoleReplyReader(ByteStream& stream) : scanner_(stream) {}

  // The text. Of a reply that breaks off: what there was of it, and then why.
  std::string readReply();

  // After readReply: the type of the reply; REDIS_ERR for one that begins with an unknown byte. Nothing where not even
  // the type was read.
  std::optional<ReplyType> type() const { return type_; }

  // After readReply: why the stream broke off or fell out of step, so that the connection is of no more use; or
  // nothing.
  const std::optional<std::string>& failure() const { return failure_; }

private:
  std::optional<ReplyType> readConsoleReplyType(int depth) { return scanner_.type(depth); }

  // Each adds the text of a piece; false if the reply broke off in it, in which case the text ends with the message.
  bool processConsoleItem(ReplyType type);
  bool processConsoleLineItem(ReplyType type);
  bool processConsoleBulkItem();
  bool processConsoleMultiBulkItem(ReplyType type);
  bool processConsoleElement();
  bool processConsoleNestedItem(ReplyType type);
  bool processConsoleNestedElement(std::size_t start);
  bool processUnknownItem();

  bool skipNested(ReplyType type, int depth);
  void addNumber(std::int64_t number);
  bool fail();

  ReplyScanner scanner_;
  std::string text_;
  std::optional<ReplyType> type_;
  std::optional<std::string> failure_;
};

}  // namespace tarn
