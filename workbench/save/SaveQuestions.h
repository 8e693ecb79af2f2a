#pragma once

#include "workbench/save/RowsToSave.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// What a save asks before it sends anything. Main queue; each shows one alert and waits for its answer, behind which
// the form may change.

// Whether rows, or a String, whose text stands for other bytes than they hold are written as they are or as their text
// says. A row counts once, whatever its columns, and once for each reason.
enum class BytesAnswer { keep, convert, cancel };
BytesAnswer askAboutChangedRows(const std::vector<ConvertedRow>& changes, TextForm form);
BytesAnswer askAboutChangedString(TextForm form);

// Whether a value that isn't on show may be replaced; its number of bytes or rows, if that is known.
bool askToReplaceHiddenString(std::optional<std::size_t> bytes);
bool askToReplaceHiddenRows(std::optional<std::size_t> rows);

// Whether a hash may be written of which several rows have one field.
bool askAboutDoubledField(std::string_view field);

enum class MoveAnswer { move, keepOld, cancel };
MoveAnswer askAboutMove(std::string_view oldKey, std::string_view newKey);

// Whether a key that exists may be replaced. Its type is told by the title, or else by the server's word.
bool askToReplaceKey(std::string_view key, std::string_view type);

}  // namespace tarn
