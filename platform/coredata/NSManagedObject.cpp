#include "platform/coredata/NSManagedObject.h"

#include <utility>

namespace tarn {

std::optional<NSUUID> NSManagedObject::uuidForKey(std::string_view key) const {
  const auto text = stringForKey(key);
  return text ? NSUUID::fromString(*text) : std::nullopt;
}

void NSManagedObject::setValueForKey(const std::string& key, NSManagedValue value) {
  NSManagedValue& known = values_[key];
  if (known == value) return;
  known = std::move(value);
  changed_.insert(key);
}

std::optional<std::string> NSManagedObject::missingRequiredKey() const {
  const auto hasValue = [this](const NSAttributeDescription& attribute) {
    if (attribute.type == NSAttributeType::string) return stringForKey(attribute.name).has_value();
    if (attribute.type == NSAttributeType::uuid) return uuidForKey(attribute.name).has_value();
    const auto number = integerForKey(attribute.name);
    return number && (attribute.type == NSAttributeType::integer64 || std::in_range<std::int32_t>(*number));
  };
  for (const NSAttributeDescription& attribute : entity_.attributes) {
    if (attribute.isRequired && !hasValue(attribute)) return attribute.name;
  }
  return std::nullopt;
}

}  // namespace tarn
