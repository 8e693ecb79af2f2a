#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "resources/OperationTabLayout.h"
#include "workbench/TabState.h"

namespace tarn {

// The text that stands for a String's bytes under a title: a character set, or "Base64", which here has no marker.
// Nothing if the bytes are no text in it. Pure; any thread.
std::optional<std::string> stringText(std::string_view bytes, std::string_view title);

// The text under a new title, by way of the bytes that the shown text stands for under the old one, so that what was
// typed stays; by way of the value's bytes where it stands for none. Pure; any thread.
std::optional<std::string> stringTextUnderNewTitle(std::string_view shown, std::string_view oldTitle,
                                                   std::string_view newTitle, std::string_view value);

// The text of a String. Main queue only.
class StringPane final {
public:
  StringPane(OperationTabLayout& outlets, TabState& state);

  // The value's bytes, under the title of popValueDataCharset.
  void showValueData();
  // Nothing is loaded: the bytes go too, so that a change of charset can't bring them back under another key.
  void empty();
  // Shows the text under the title that was chosen now.
  void changeCharset();

private:
  // Bytes that are no text show as empty text, with a line that says so and isn't part of it.
  void show(const std::optional<std::string>& text);

  OperationTabLayout& outlets_;
  TabState& state_;
};

}  // namespace tarn
