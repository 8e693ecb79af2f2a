#include "platform/coredata/NSManagedObject.h"

#include <utility>

namespace tarn {

void NSManagedObject::setValueForKey(const std::string& key, const NSManagedValue& value) {
  if (std::exchange(values_[key], value) != value) changed_.insert(key);
}

std::optional<std::string> NSManagedObject::missingRequiredKey() const {
  using enum NSAttributeType;
  for (const auto& [name, type, isRequired] : entity_.attributes) {
    const auto number = integerForKey(name);
    const bool hasValue = type == string ? stringForKey(name).has_value()
                          : type == uuid ? uuidForKey(name).has_value()
                                         : number && (type == integer64 || std::in_range<std::int32_t>(*number));
    if (isRequired && !hasValue) return name;
  }
  return std::nullopt;
}

}  // namespace tarn
