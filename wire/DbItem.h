#pragma once

#include "platform/foundation/Mutex.h"
#include "platform/foundation/NSObject.h"

#include <memory>
#include <string>

namespace tarn {

class ServerItem;

// One database of a server, and its row in the tree. Made and kept up to date on the server's queue, read on the main
// queue.
class DbItem final : public NSObject {
public:
  DbItem(int index, std::weak_ptr<ServerItem> parent);

  int dbIdx() const { return dbIdx_; }
  const std::string& dbName() const { return dbName_; }
  // Nothing once the server is gone.
  std::shared_ptr<ServerItem> parent() const { return parent_.lock(); }

  // With its own parentheses: "(0)" at first. Any thread.
  std::string keysCount() const;
  void setKeysCount(std::string text);

private:
  const int dbIdx_;
  const std::string dbName_;
  const std::weak_ptr<ServerItem> parent_;
  mutable Mutex mutex_;
  std::string keysCount_ GUARDED_BY(mutex_) = "(0)";
};

}  // namespace tarn
