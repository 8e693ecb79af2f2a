#pragma once

#include <string>
#include <string_view>

namespace tarn {

// An image of the program's resources, known by its name; drawn to the size, scale and palette of where it shows.
class NSImage final {
public:
  // No image.
  NSImage() = default;

  // The image "resources/images/NAME.svg". Whether it is there was checked at the start.
  static NSImage imageNamed(std::string_view name);

  // True if the named image can be loaded and drawn.
  static bool exists(std::string_view name);

  const std::string& name() const { return name_; }
  bool isNone() const { return name_.empty(); }

private:
  std::string name_;
};

}  // namespace tarn
