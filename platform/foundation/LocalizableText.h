#pragma once

namespace tarn {

// The text itself, marked as one of those that are collected for translation. It is looked up where it is shown
// (localizedString); what isn't shown, as the log, has it in English.
constexpr const char* localizable(const char* english) {
  return english;
}

}  // namespace tarn
