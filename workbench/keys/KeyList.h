#pragma once

#include "platform/foundation/Bytes.h"

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace tarn {

// The raw names of the keys that a search found, in their order, and where a saved key goes among them. Plain data,
// which knows no view. Main queue only.
class KeyList final {
public:
  std::size_t size() const { return keys_.size(); }
  const Bytes& at(std::size_t position) const { return keys_[position]; }

  // Answers with the keys before.
  std::vector<Bytes> assign(std::vector<Bytes> keys) { return std::exchange(keys_, std::move(keys)); }

  // The position that a save gives its key: that of the old one; the end where the list hasn't that; the top where
  // there is no old one.
  std::size_t positionOfSavedKey(const std::optional<Bytes>& oldKey) const;

  // Takes the first entry of this key away, if there is one.
  void remove(const Bytes& key);

  // Puts the key at this position, or at the end of a shorter list, unless the list has it. Answers where it stands.
  std::size_t insert(const Bytes& key, std::size_t position);

private:
  std::vector<Bytes> keys_;
};

}  // namespace tarn
