#pragma once

#include "platform/foundation/NSFormatter.h"

namespace tarn {

// A port: a whole number from 0 to 65535, or nothing yet.
class PositiveIntegerValueFormatter final : public NSFormatter {
public:
  bool isPartialStringValid(std::string_view partial) const override;
};

}  // namespace tarn
