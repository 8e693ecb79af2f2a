#pragma once

#include "platform/coredata/NSEntityDescription.h"
#include "platform/foundation/NSUUID.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tarn {

// A value of a record: absent, a whole number, a text (UTF-8) or an identifier.
using NSManagedValue = std::variant<std::monostate, std::int64_t, std::string, NSUUID>;

// True also for an absent value. A whole number must fit the type.
bool isValueOfType(const NSManagedValue& value, NSAttributeType type);

// One record of the store, as its context knows it: what was stored, with the changes that are not yet saved. Held by
// std::shared_ptr; a context has one object for each record. Main queue only.
class NSManagedObject final {
public:
  // Made by the context: a new record.
  explicit NSManagedObject(std::shared_ptr<const NSEntityDescription> entity);
  NSManagedObject(const NSManagedObject&) = delete;
  NSManagedObject& operator=(const NSManagedObject&) = delete;

  const NSEntityDescription& entity() const { return *entity_; }

  // Absent also when the entity has no such attribute, or when what is stored isn't of the attribute's type.
  const NSManagedValue& valueForKey(std::string_view key) const;
  std::optional<std::string> stringForKey(std::string_view key) const;
  std::optional<std::int64_t> integerForKey(std::string_view key) const;
  std::optional<NSUUID> uuidForKey(std::string_view key) const;

  // False, and nothing has changed, when the entity has no such attribute or the value isn't of its type.
  bool setValueForKey(std::string_view key, NSManagedValue value);

  // The first required attribute that is absent, if any.
  std::optional<std::string> missingRequiredKey() const;

  bool hasChanges() const { return !rowId_ || !changed_.empty(); }

private:
  friend class NSManagedObjectContext;

  std::optional<std::size_t> indexOfKey(std::string_view key) const;

  std::shared_ptr<const NSEntityDescription> entity_;
  // Nothing until the record has been saved for the first time.
  std::optional<std::int64_t> rowId_;
  // In step with the entity's attributes.
  std::vector<NSManagedValue> values_;
  // The indexes of the attributes that were set since the last save or fetch.
  std::set<std::size_t> changed_;
};

}  // namespace tarn
