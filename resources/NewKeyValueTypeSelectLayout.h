#pragma once

#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSWindow.h"

#include <memory>

namespace tarn {

// The dialog that picks the type of a new key's value. Owns all of it; every control has the name of its field.
class NewKeyValueTypeSelectLayout final {
private:
  struct Widgets;
  std::unique_ptr<Widgets> widgets_;

public:
  NewKeyValueTypeSelectLayout();
  ~NewKeyValueTypeSelectLayout();

  NSWindow window;
  // "String", "List", "Set", "Hash" and "SortedSet".
  NSPopUpButton popValueType;
  NSButton btnConfirm;
  NSButton btnCancel;
};

}  // namespace tarn
