#include "platform/coredata/NSFetchRequest.h"

namespace tarn {

std::optional<NSPredicate> NSPredicate::predicateWithFormat(std::string_view format, NSManagedValue argument) {
  static constexpr std::string_view end = "=%@";
  if (!format.ends_with(end)) return std::nullopt;
  format.remove_suffix(end.size());
  return NSPredicate(std::string(format), std::move(argument));
}

bool NSPredicate::evaluateWithObject(const NSManagedObject& object) const {
  return object.valueForKey(key_) == value_;
}

}  // namespace tarn
