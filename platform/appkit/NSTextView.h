#pragma once

#include "platform/appkit/NSView.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class NSTextView;

// Positions and lengths of a text view's text, in UTF-16 code units of the text as a whole.
struct NSRange {
  std::size_t location = 0;
  std::size_t length = 0;
};

class NSTextViewDelegate {
public:
  virtual ~NSTextViewDelegate() = default;

  // The focus went to another control after the user had changed the text.
  virtual void textDidEndEditing(NSTextView& view) = 0;

  // Asked before every change by the user: typing, paste, drop, input method, undo. False: the view leaves the text as
  // it is; the delegate may have set it by itself.
  virtual bool shouldChangeTextInRanges(NSTextView& view, const std::vector<NSRange>& ranges,
                                        const std::vector<std::string>& replacementStrings) = 0;
};

// Many lines of text to edit. It gives back, code point for code point, the text that it was given, whatever its line
// ends and control characters, and holds lines of any length: a long line lies in several blocks, and no operation
// shows where one ends. Text set by code sends no message and clears undo. Paste and drop insert plain text.
// Nothing but the user changes the text: there is no substitution of any kind.
class NSTextView final : public NSView {
public:
  explicit NSTextView(QWidget* widget);
  ~NSTextView() override;

  std::string string() const;

  // Where the new text begins with the old one, only the rest is added, at a cost that follows the rest. The caret goes
  // to the end.
  void setString(std::string_view text);
  // The same as setting the whole text with `text` at its end, at a cost that follows `text` alone.
  void appendString(std::string_view text);

  // In UTF-16 code units.
  std::size_t length() const;
  bool isEmpty() const { return length() == 0; }
  std::string substringFromIndex(std::size_t location) const;

  // True if the user changed the text since it was last set by code.
  bool isEdited() const;

  NSRange selectedRange() const;
  void scrollRangeToVisible(NSRange range);

  void setDelegate(NSTextViewDelegate* delegate);
  void setPlaceholderString(std::string_view text);

private:
  struct Private;
  std::unique_ptr<Private> d_;
};

}  // namespace tarn
