#pragma once

#include "workbench/TypedBytes.h"

#include <string_view>

namespace tarn {

// How much of a key the search text stands for.
enum class Match { part, whole };

// The glob, as bytes, that the server is asked for. `title` is what the pop-up of the key's charset says: a character
// set or "Base64". Neither bytes nor an alert for an empty text that has to be a whole key: no key is found. Pure; any
// thread.
TypedBytes searchPattern(std::string_view text, std::string_view title, Match match);

}  // namespace tarn
