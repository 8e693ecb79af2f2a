#include "workbench/value/ValueType.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarn {

namespace {

struct NamedType {
  ValueType type;
  std::string_view word;
  std::string_view title;
};

// In the order of ValueType.
constexpr std::array<NamedType, 5> namedTypes{{{ValueType::string, "string", "String"},
                                               {ValueType::list, "list", "List"},
                                               {ValueType::set, "set", "Set"},
                                               {ValueType::hash, "hash", "Hash"},
                                               {ValueType::sortedSet, "zset", "SortedSet"}}};

std::optional<ValueType> typeNamed(std::string_view name, std::string_view NamedType::*names) {
  const auto* found = std::ranges::find(namedTypes, name, names);
  return found == namedTypes.end() ? std::nullopt : std::optional(found->type);
}

}  // namespace

std::optional<ValueType> valueTypeOfWord(std::string_view word) {
  return typeNamed(word, &NamedType::word);
}

std::optional<ValueType> valueTypeOfTitle(std::string_view title) {
  return typeNamed(title, &NamedType::title);
}

std::string_view valueTypeTitle(ValueType type) {
  return namedTypes[static_cast<std::size_t>(type)].title;
}

}  // namespace tarn
