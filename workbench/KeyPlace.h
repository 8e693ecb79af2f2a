#pragma once

#include "platform/foundation/Bytes.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace tarn {

// Where a saved or deleted key stands in the list of keys. All pure; any thread.

// The place that a save gives its key: that of the old one; the end where the list hasn't that; the top where there is
// no old one.
std::size_t placeOfSavedKey(const std::vector<Bytes>& keys, const std::optional<Bytes>& oldKey);

// Takes the first entry of this key away, if there is one.
void removeKey(std::vector<Bytes>& keys, const Bytes& key);

// Puts the key at this place, or at the end of a shorter list, unless the list has it.
void insertKey(std::vector<Bytes>& keys, const Bytes& key, std::size_t place);

}  // namespace tarn
