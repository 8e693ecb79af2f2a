#pragma once

#include "platform/foundation/NSUUID.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <variant>

namespace tarn {

enum class NSAttributeType { string, integer32, integer64, uuid };

struct NSAttributeDescription {
  const char* name;
  NSAttributeType type;
  bool isRequired = false;
};

// One kind of record. Its name is its table's, those of the attributes are the columns': letters and digits alone.
struct NSEntityDescription {
  const char* name;
  std::span<const NSAttributeDescription> attributes;
};

// The kinds of record of one store: a constant of the program, since all that is made from it refers to it.
using NSManagedObjectModel = std::span<const NSEntityDescription>;

// What a column holds: nothing, a whole number or a text (UTF-8). An identifier is stored as its text.
using NSManagedValue = std::variant<std::monostate, std::int64_t, std::string>;
using NSManagedValues = std::map<std::string, NSManagedValue, std::less<>>;

// One record of the store, as its context knows it: what was stored, with the changes that are not yet saved. Held by
// std::shared_ptr; a context has one object for each record. Main queue only.
class NSManagedObject final {
public:
  // Made by the context: a new record.
  explicit NSManagedObject(const NSEntityDescription& entity) : entity_(entity) {}

  // Nothing when the value is absent, or isn't of this type.
  std::optional<std::string> stringForKey(std::string_view key) const { return valueForKey<std::string>(key); }
  std::optional<std::int64_t> integerForKey(std::string_view key) const { return valueForKey<std::int64_t>(key); }
  std::optional<NSUUID> uuidForKey(std::string_view key) const {
    const auto text = stringForKey(key);
    return text ? NSUUID::fromString(*text) : std::nullopt;
  }

  // `key` is an attribute of the entity, and the value of its type, or absent.
  void setValueForKey(const std::string& key, const NSManagedValue& value);

  // The first required attribute that has no value of its type, if any.
  std::optional<std::string> missingRequiredKey() const;

  bool hasChanges() const { return isDeleted_ || !rowId_ || !changed_.empty(); }

private:
  friend class NSManagedObjectContext;

  template <typename T>
  std::optional<T> valueForKey(std::string_view key) const {
    const auto found = values_.find(key);
    const T* const value = found == values_.end() ? nullptr : std::get_if<T>(&found->second);
    return value ? std::optional(*value) : std::nullopt;
  }

  const NSEntityDescription& entity_;
  // Nothing until the record has been saved for the first time.
  std::optional<std::int64_t> rowId_;
  NSManagedValues values_;
  // The attributes that were set since the last save or fetch.
  std::set<std::string> changed_;
  bool isDeleted_ = false;
};

}  // namespace tarn
