#pragma once

#include <string_view>

namespace tarn {

// Decides, keystroke by keystroke, what a field accepts. Asked before every change by the user, with the text as it
// would become (UTF-8); never for text set by code. Main thread.
class NSFormatter {
public:
  virtual ~NSFormatter() = default;
  virtual bool isPartialStringValid(std::string_view partial) const = 0;
};

}  // namespace tarn
