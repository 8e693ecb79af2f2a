#pragma once

#include "platform/appkit/NSViewController.h"
#include "platform/appkit/NSWindowController.h"
#include "resources/NewKeyValueTypeSelectLayout.h"
#include "workbench/value/ValueType.h"

#include <functional>

namespace tarn {

// The content of the dialog that picks the type of a new key's value. Main thread only.
class NewKeyValueTypeSelectViewController final : public NSViewController {
public:
  // What the dialog asks of the window that opened it.
  struct Answers {
    // Confirmed, with the type chosen; the dialog closes behind it.
    std::function<void(ValueType type)> chosen;
    // Cancelled; the dialog closes behind it.
    std::function<void()> cancelled;
  };

  explicit NewKeyValueTypeSelectViewController(Answers answers);

  NSView& view() override { return layout_.window; }
  NSWindow& window() { return layout_.window; }
  // The outlets, by their names.
  NewKeyValueTypeSelectLayout& outlets() { return layout_; }

  // The first type selected, with the keyboard.
  void startAnew();

private:
  void clickConfirm();
  void clickCancel();

  NewKeyValueTypeSelectLayout layout_;
  const Answers answers_;
};

// The one dialog of the program that picks the type of a new key's value.
using NewKeyValueTypeSelectWindowController = WindowControllerOf<NewKeyValueTypeSelectViewController>;

}  // namespace tarn
