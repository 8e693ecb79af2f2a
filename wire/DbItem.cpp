#include "wire/DbItem.h"

#include <utility>

namespace tarn {

DbItem::DbItem(int index, std::weak_ptr<ServerItem> parent)
    : dbIdx_(index), dbName_("db" + std::to_string(index)), parent_(std::move(parent)) {}

std::string DbItem::keysCount() const {
  const MutexLock lock(mutex_);
  return keysCount_;
}

void DbItem::setKeysCount(std::string text) {
  const MutexLock lock(mutex_);
  keysCount_ = std::move(text);
}

}  // namespace tarn
