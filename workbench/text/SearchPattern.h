#pragma once

#include "workbench/text/BytesOrAlert.h"
#include "workbench/text/TextForm.h"

#include <string_view>

namespace tarn {

// How much of a key the search text stands for.
enum class Match { part, whole };

// The glob, as bytes, that the server is asked for: what is typed for the server (`*`, `?`, classes, backslashes)
// reaches it as typed; bytes of other characters, and of Base64, that look like it are escaped. Neither bytes nor an
// alert for an empty text that has to be a whole key: no key is found. Pure; any thread.
BytesOrAlert searchPattern(std::string_view text, TextForm form, Match match);

}  // namespace tarn
