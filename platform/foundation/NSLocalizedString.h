#pragma once

#include <string>
#include <string_view>

namespace tarn {

// Called once at start, before other threads: takes the language from the environment, and its texts from the
// catalogue `FOLDER/LANGUAGE/LC_MESSAGES/tarn.mo`. Without it, or without a catalogue, all texts stay English.
void useTranslations(const std::string& folder);

// The text in the desktop's language, looked up by its English text, which is also the answer where there is none.
// Any thread.
std::string localizedString(const char* english);

// Every `placeholder` ("{0}", "{1}") in `text` replaced by `value`, as plain text.
std::string replacingPlaceholder(std::string text, std::string_view placeholder, std::string_view value);

// "{0}" and "{1}" replaced at once, so that neither is looked for in the other's text.
std::string replacingPlaceholders(std::string_view text, std::string_view first, std::string_view second);

}  // namespace tarn
