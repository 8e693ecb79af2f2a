#pragma once

#include "platform/foundation/NSFormatter.h"

namespace tarn {

// A whole number of any size that may be negative, or a part of one as it is typed: nothing, or "-" alone. Writes each
// answer about a text that isn't empty to the log.
class CouldNegativeNumberFormatter final : public NSFormatter {
public:
  bool isPartialStringValid(std::string_view partial) const override;
};

}  // namespace tarn
