#pragma once

#include "platform/foundation/NSFormatter.h"

namespace tarn {

// A decimal number of at most 16 characters that may be negative, or a part of one as it is typed: nothing, "-" alone,
// or a fraction that is still empty ("1."). No exponent, and no number that begins with its point. Writes "false" to
// the log for a text that is no such number, whatever its length.
class RequiredCouldNegativeDoubleFormatter final : public NSFormatter {
public:
  bool isPartialStringValid(std::string_view partial) const override;
};

}  // namespace tarn
