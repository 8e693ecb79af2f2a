#pragma once

#include "platform/foundation/Bytes.h"
#include "workbench/WorkbenchTab.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

// The text of a String. Main queue only.
class StringPane final {
public:
  explicit StringPane(WorkbenchTab& tab);

  void setHidden(bool hidden) { tab_.outlets.valueDataStringScrollView.setHidden(hidden); }

  // Shows the value in the form of popValueDataCharset.
  void showValue(Bytes value);
  // The value isn't here, or not yet: the bytes go too, so that a change of charset can't bring them back under another
  // key.
  void empty();
  // There is no value: the text is the first of a new key.
  void blank();
  // Shows the text in the form that was chosen now.
  void changeCharset();

  // False while there is a value that can't be seen, because it is no text in its form, couldn't be read, or isn't here
  // yet; also once something is typed in its place.
  bool isOnShow() const { return isOnShow_; }
  // True if the user has changed the text since the value was shown, also if the form was changed after that; an edit
  // that the value holds by then, since it was saved, counts no more in the new form.
  bool isEdited() const;
  // Counts the texts that were set by code: as long as it stays, the value on show is the same.
  int revision() const { return revision_; }
  std::string text() const { return tab_.outlets.valueDataStringTxtView.string(); }
  const Bytes& value() const { return value_; }

  // The bytes that a save is about to write, and what it has written. Those of a value that isn't on show stay known
  // until they are replaced.
  void writingValue(const Bytes& value);
  void valueWritten(Bytes value);

private:
  // Bytes that are no text show as empty text, with a line that says so and isn't part of it.
  void show(const std::optional<std::string>& text);
  void setText(std::string_view text, const std::string& placeholder);

  WorkbenchTab& tab_;
  Bytes value_;
  // The form in which the text was last shown.
  TextForm shownForm_;
  bool isOnShow_ = false;
  bool wasEdited_ = false;
  int revision_ = 0;
};

}  // namespace tarn
