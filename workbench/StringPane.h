#pragma once

#include "resources/OperationTabLayout.h"
#include "workbench/TabState.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tarn {

// The text that stands for a String's bytes under a title: a character set, or "Base64", which here has no marker.
// Nothing if the bytes are no text in it. Pure; any thread.
std::optional<std::string> stringText(std::string_view bytes, std::string_view title);

// What a String shows after a change of its title.
struct RetitledString {
  // Nothing if it can't be shown.
  std::optional<std::string> text;
  // The text is what was shown before, with what was typed in it and isn't saved; else it is the value's own.
  bool isShownText = false;
};

// The text under a new title, by way of the bytes that the shown text stands for under the old one, so that what was
// typed stays; by way of the value's bytes where it stands for none. Pure; any thread.
RetitledString stringTextUnderNewTitle(std::string_view shown, std::string_view oldTitle, std::string_view newTitle,
                                       std::string_view value);

// The text of a String. Main queue only.
class StringPane final {
public:
  StringPane(OperationTabLayout& outlets, TabState& state);

  // The value's bytes, under the title of popValueDataCharset.
  void showValueData();
  // The value isn't here, or not yet: the bytes go too, so that a change of charset can't bring them back under another
  // key.
  void empty();
  // There is no value: the text is the first of a new key.
  void blank();
  // Shows the text under the title that was chosen now.
  void changeCharset();

  // False while there is a value that can't be seen, because it is no text under the title, couldn't be read, or isn't
  // here yet; also once something is typed in its place.
  bool isOnShow() const { return isOnShow_; }
  // True if a hand has changed the text since the value was shown, also if the title was changed after that; an edit
  // that the value holds by then, since it was saved, counts no more under the new title.
  bool isEdited() const;
  // Counts the texts that were set by code: as long as it stays, the value on show is the same.
  int revision() const { return revision_; }
  // The bytes that a save is about to write, and what it has written. Those of a value that isn't on show stay known
  // until they are replaced.
  void writingValue(const Bytes& value);
  void valueWritten(Bytes value);

private:
  // Bytes that are no text show as empty text, with a line that says so and isn't part of it.
  void show(const std::optional<std::string>& text);
  void setText(std::string_view text, const std::string& placeholder);

  OperationTabLayout& outlets_;
  TabState& state_;
  bool isOnShow_ = false;
  bool wasEdited_ = false;
  int revision_ = 0;
};

}  // namespace tarn
