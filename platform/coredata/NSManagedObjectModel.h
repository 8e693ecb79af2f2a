#pragma once

#include "platform/coredata/NSEntityDescription.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// The kinds of record of one store, read from a resource. A line of it is empty, a comment that begins with `#`,
// `entity NAME`, or an attribute of the entity above it, `NAME TYPE required` or `NAME TYPE optional`, where the type
// is string, integer32, integer64 or uuid. Names are letters and digits. Immutable.
class NSManagedObjectModel final {
public:
  // Null if the text has no entity, or a line that is none of these.
  static std::shared_ptr<const NSManagedObjectModel> initWithContents(const std::string& text);

  explicit NSManagedObjectModel(std::vector<NSEntityDescription> entities);

  const std::vector<NSEntityDescription>& entities() const { return entities_; }
  // Null if there is none of this name. Lives as long as the model.
  const NSEntityDescription* entity(std::string_view name) const;

private:
  std::vector<NSEntityDescription> entities_;
};

}  // namespace tarn
