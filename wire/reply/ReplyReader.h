#pragma once

#include "wire/reply/ReplyResult.h"
#include "wire/reply/ReplyScanner.h"

#include <cstdint>
#include <vector>

namespace tarn {

// Reads one reply off a stream and makes a ReplyResult of it. Bytes stay bytes: nothing of a bulk string is decoded.
// Lives for one reply, on the thread that holds the connection's lock.
class ReplyReader final {
public:
  explicit ReplyReader(ByteStream& stream) : scanner_(stream) {}

  ReplyResult readReply();

  // An array of which each element is a reply of its own, also an error; of another reply there is `whole` alone.
  struct Replies {
    ReplyResult whole;
    std::vector<ReplyResult> elements;
  };
  Replies readReplies();

  // After either: the stream broke off or fell out of step, and the connection is of no more use.
  bool lostConnection() const { return lost_; }

private:
  ReplyResult lost(std::string message);

  ReplyResult processItem(ReplyType type);
  ReplyResult processLineItem(ReplyType type);
  ReplyResult processBulkItem(ReplyType type);
  ReplyResult processMultiBulkItem(ReplyType type);
  ReplyResult processUnknownItem();

  bool readBulk(Bytes& value);
  bool appendElements(std::int64_t count, int depth, std::vector<Bytes>& list);
  bool appendElement(int depth, std::vector<Bytes>& list);
  bool appendNested(ReplyType type, int depth, std::vector<Bytes>& list);

  ReplyScanner scanner_;
  bool lost_ = false;
};

}  // namespace tarn
