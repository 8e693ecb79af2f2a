#pragma once

#include "workbench/RowConversion.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// What a save asks before it sends anything. Main queue; each shows one alert and waits for its answer, behind which
// the form may change.

// Rows whose bytes the conversion of their text would change, and why; a row counts once for each reason.
struct ChangedRows {
  std::size_t rows = 0;
  std::size_t markers = 0;
  std::size_t escapes = 0;
  std::size_t unusualForms = 0;
};

// The rows of all columns together; each column's ascend. Pure.
ChangedRows changedRows(const std::vector<const std::vector<ConvertedRow>*>& columns);

enum class BytesAnswer { keep, convert, cancel };
BytesAnswer askAboutChangedRows(const ChangedRows& changed, std::string_view title);
BytesAnswer askAboutChangedString(std::string_view title);

// Whether a String that isn't on show may be replaced; its number of bytes, if that is known.
bool askToReplaceHiddenString(std::optional<std::size_t> bytes);

enum class MoveAnswer { move, keepOld, cancel };
MoveAnswer askAboutMove(std::string_view oldKey, std::string_view newKey);

// The last question before a delete.
bool askToDelete(std::string_view key);

}  // namespace tarn
