#include "workbench/KeyPlace.h"

#include <algorithm>

namespace tarn {

std::size_t placeOfSavedKey(const std::vector<Bytes>& keys, const std::optional<Bytes>& oldKey) {
  if (!oldKey) return 0;
  return static_cast<std::size_t>(std::find(keys.begin(), keys.end(), *oldKey) - keys.begin());
}

void removeKey(std::vector<Bytes>& keys, const Bytes& key) {
  if (const auto found = std::find(keys.begin(), keys.end(), key); found != keys.end()) keys.erase(found);
}

void insertKey(std::vector<Bytes>& keys, const Bytes& key, std::size_t place) {
  if (std::find(keys.begin(), keys.end(), key) != keys.end()) return;
  keys.insert(keys.begin() + static_cast<std::ptrdiff_t>(std::min(place, keys.size())), key);
}

}  // namespace tarn
