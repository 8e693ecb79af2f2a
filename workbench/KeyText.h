#pragma once

#include "workbench/TypedBytes.h"

#include <string>
#include <string_view>

namespace tarn {

// The two forms of a key: its bytes, and the text that the key list and the form show. `title` is what the pop-up of
// the key's charset says; `translate` tells whether the form's text holds backslash escapes and the marker in front of
// Base64. All pure; any thread.

// The escaped text; `\B` and Base64 for bytes that the charset can't show.
std::string keyDisplayText(std::string_view key, std::string_view title);

// The bytes that the form's text stands for, or the alert that says why there are none.
TypedBytes keyDataFromText(std::string_view text, std::string_view title, bool translate);

// The form's text in the other form, after the escapes were switched on or off, so that it keeps its meaning.
std::string keyTextTranslated(std::string_view text, bool nowOn);

}  // namespace tarn
