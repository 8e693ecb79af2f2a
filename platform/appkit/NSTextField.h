#pragma once

#include "platform/appkit/NSControl.h"
#include "platform/foundation/NSFormatter.h"

#include <memory>
#include <string>
#include <string_view>

namespace tarn {

class NSTextField;
class NSTableView;

// The end of an edit in a field or in a cell, as it was at the moment of the end.
struct TextEdit {
  int tag = 0;
  std::string text;
  NSTextField* field = nullptr;  // the field; nothing for a cell
  NSTableView* table = nullptr;  // the cell's table, with its row and column
  int row = -1;
  int column = -1;
};

class NSTextFieldDelegate {
public:
  virtual ~NSTextFieldDelegate() = default;

  // At the first change by the user since the text was last set by code or an edit ended.
  virtual void controlTextDidBeginEditing(int tag) = 0;

  // Once, and only after a beginning: the focus went to another control, or Enter was pressed.
  virtual void controlTextDidEndEditing(const TextEdit& edit) = 0;
};

// A label, or one line of text to edit. It gives back, code point for code point, the text that it was given, line ends
// and control characters too; those that would be invisible show as a mark. Text set by code sends no message, asks no
// formatter, clears undo and puts the caret at the end. The action is sent on Enter. Ctrl with A, C, V or X reaches the
// text under edit.
class NSTextField : public NSControl {
public:
  // The widget is one of ours: TextFieldWidget, or LabelWidget for a text that isn't edited.
  explicit NSTextField(QWidget* widget);
  ~NSTextField() override;

  std::string stringValue() const override;
  void setStringValue(std::string_view text) override;

  void setDelegate(NSTextFieldDelegate* delegate);
  void setFormatter(std::unique_ptr<NSFormatter> formatter);
  void setPlaceholderString(std::string_view text);

private:
  struct Private;
  std::unique_ptr<Private> d_;
};

// A field whose characters show as dots, and can't be copied.
class NSSecureTextField final : public NSTextField {
public:
  explicit NSSecureTextField(QWidget* widget);
};

}  // namespace tarn
