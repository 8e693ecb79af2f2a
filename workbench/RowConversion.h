#pragma once

#include "platform/foundation/Bytes.h"
#include "workbench/ValueColumn.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace tarn {

// What a save makes of text. `title` is what the pop-up of the value's charset says, a character set or "Base64";
// `translate` tells whether the rows' text holds backslash escapes. All pure; any thread.

// The bytes that the text of a row stands for; nothing where it stands for none, and the row keeps those that it has.
std::optional<Bytes> convertedRow(std::string_view text, std::string_view title, bool translate);

// The bytes that the text of a String stands for. No marker and no escapes.
std::optional<Bytes> convertedString(std::string_view text, std::string_view title);

// Why a text stands for other bytes than those that it was made from.
enum class ConversionReason {
  marker,       // it begins with `\B`, though the bytes are these characters
  escapes,      // it holds backslash sequences
  unusualForm,  // the charset writes it in another way
};

struct ConvertedRow {
  std::size_t row = 0;
  Bytes bytes;
  ConversionReason reason = ConversionReason::unusualForm;
};

// The rows whose bytes would change if their text were converted; ascending. Rows that can't be told to stay from a
// look at their bytes are converted for it.
std::vector<ConvertedRow> rowsChangedByConversion(const ValueColumn& column, std::string_view title, bool translate);

}  // namespace tarn
