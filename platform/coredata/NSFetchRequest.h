#pragma once

#include "platform/coredata/NSManagedObject.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tarn {

// Which records are meant: those whose attribute equals a value.
class NSPredicate final {
public:
  // The format is `KEY=%@`; the argument takes the place of `%@`. Nothing for any other format.
  static std::optional<NSPredicate> predicateWithFormat(std::string_view format, NSManagedValue argument);

  bool evaluateWithObject(const NSManagedObject& object) const;

private:
  NSPredicate(std::string key, NSManagedValue value) : key_(std::move(key)), value_(std::move(value)) {}

  std::string key_;
  NSManagedValue value_;
};

// What to fetch: all records of an entity, or those that a predicate picks.
class NSFetchRequest final {
public:
  // As NSManagedObjectContext::entityForName gave it; null fetches nothing.
  void setEntity(const NSEntityDescription* entity) { entity_ = entity; }
  void setPredicate(std::optional<NSPredicate> predicate) { predicate_ = std::move(predicate); }

  const NSEntityDescription* entity() const { return entity_; }
  const std::optional<NSPredicate>& predicate() const { return predicate_; }

private:
  const NSEntityDescription* entity_ = nullptr;
  std::optional<NSPredicate> predicate_;
};

}  // namespace tarn
