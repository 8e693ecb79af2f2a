#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

enum class NSAttributeType { string, integer32, integer64, uuid };

struct NSAttributeDescription {
  std::string name;
  NSAttributeType type = NSAttributeType::string;
  bool isRequired = false;
};

// One kind of record: its name, which is its table's, and its attributes, which are the columns.
struct NSEntityDescription {
  std::string name;
  std::vector<NSAttributeDescription> attributes;

  // Null if there is none of this name.
  const NSAttributeDescription* attribute(std::string_view attributeName) const;
};

}  // namespace tarn
