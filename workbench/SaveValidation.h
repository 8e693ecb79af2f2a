#pragma once

#include "workbench/TypedBytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// What must be right before a save sends anything. Each answers with the text of the alert that ends the save, or with
// nothing. All pure; any thread.

// The TTL in seconds that the text says: -1, for ever, or above 0. Nothing for all else.
std::optional<std::int64_t> ttlFromText(std::string_view text);

// The head of the form: a type that can be saved, a key, a TTL.
std::optional<std::string> alertOfHead(std::string_view type, std::string_view key, std::string_view ttl);

// The rows of a List, Set, Hash or SortedSet; the scores are asked for the last alone.
std::optional<std::string> alertOfRows(std::string_view type, std::size_t rowCount,
                                       const std::vector<std::string>& scores);

// The bytes of a String's text under this title, or the alert.
TypedBytes stringDataFromText(std::string_view text, std::string_view title);

}  // namespace tarn
