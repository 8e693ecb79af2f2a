#pragma once

#include <optional>
#include <string_view>

namespace tarn {

enum class ValueType { string, list, set, hash, sortedSet };

// All pure; any thread.

// The type that the server calls by this word; nothing for a word that no pane shows.
std::optional<ValueType> valueTypeOfWord(std::string_view word);

// The type with this title; nothing for another text.
std::optional<ValueType> valueTypeOfTitle(std::string_view title);

// As labels and pop-ups show it.
std::string_view valueTypeTitle(ValueType type);

}  // namespace tarn
