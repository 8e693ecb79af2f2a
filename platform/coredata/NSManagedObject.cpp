#include "platform/coredata/NSManagedObject.h"

#include <limits>
#include <utility>

namespace tarn {
namespace {

template <typename T>
std::optional<T> valueAs(const NSManagedValue& value) {
  const auto* const typed = std::get_if<T>(&value);
  if (typed == nullptr) return std::nullopt;
  return *typed;
}

}  // namespace

bool isValueOfType(const NSManagedValue& value, NSAttributeType type) {
  if (std::holds_alternative<std::monostate>(value)) return true;
  const auto* const number = std::get_if<std::int64_t>(&value);
  switch (type) {
    case NSAttributeType::string:
      return std::holds_alternative<std::string>(value);
    case NSAttributeType::integer32:
      return number != nullptr && *number >= std::numeric_limits<std::int32_t>::min() &&
             *number <= std::numeric_limits<std::int32_t>::max();
    case NSAttributeType::integer64:
      return number != nullptr;
    case NSAttributeType::uuid:
      return std::holds_alternative<NSUUID>(value);
  }
  return false;
}

NSManagedObject::NSManagedObject(std::shared_ptr<const NSEntityDescription> entity)
    : entity_(std::move(entity)), values_(entity_->attributes.size()) {}

const NSManagedValue& NSManagedObject::valueForKey(std::string_view key) const {
  static const NSManagedValue absent;
  const auto index = indexOfKey(key);
  return index ? values_[*index] : absent;
}

std::optional<std::string> NSManagedObject::stringForKey(std::string_view key) const {
  return valueAs<std::string>(valueForKey(key));
}

std::optional<std::int64_t> NSManagedObject::integerForKey(std::string_view key) const {
  return valueAs<std::int64_t>(valueForKey(key));
}

std::optional<NSUUID> NSManagedObject::uuidForKey(std::string_view key) const {
  return valueAs<NSUUID>(valueForKey(key));
}

bool NSManagedObject::setValueForKey(std::string_view key, NSManagedValue value) {
  const auto index = indexOfKey(key);
  if (!index || !isValueOfType(value, entity_->attributes[*index].type)) return false;
  if (values_[*index] == value) return true;
  values_[*index] = std::move(value);
  changed_.insert(*index);
  return true;
}

std::optional<std::string> NSManagedObject::missingRequiredKey() const {
  for (std::size_t i = 0; i < values_.size(); ++i) {
    const NSAttributeDescription& attribute = entity_->attributes[i];
    if (attribute.isRequired && std::holds_alternative<std::monostate>(values_[i])) return attribute.name;
  }
  return std::nullopt;
}

std::optional<std::size_t> NSManagedObject::indexOfKey(std::string_view key) const {
  const NSAttributeDescription* const attribute = entity_->attribute(key);
  if (attribute == nullptr) return std::nullopt;
  return static_cast<std::size_t>(attribute - entity_->attributes.data());
}

}  // namespace tarn
