#include "workbench/keys/KeyList.h"

#include <algorithm>

namespace tarn {

std::size_t KeyList::positionOfSavedKey(const std::optional<Bytes>& oldKey) const {
  if (!oldKey) return 0;
  return static_cast<std::size_t>(std::ranges::find(keys_, *oldKey) - keys_.begin());
}

void KeyList::remove(const Bytes& key) {
  if (const auto found = std::ranges::find(keys_, key); found != keys_.end()) keys_.erase(found);
}

std::size_t KeyList::insert(const Bytes& key, std::size_t position) {
  auto at = std::ranges::find(keys_, key);
  if (at == keys_.end()) {
    at = keys_.insert(keys_.begin() + static_cast<std::ptrdiff_t>(std::min(position, keys_.size())), key);
  }
  return static_cast<std::size_t>(at - keys_.begin());
}

}  // namespace tarn
