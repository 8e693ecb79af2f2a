#pragma once

#include "platform/appkit/NSWindowController.h"
#include "workbench/NewKeyValueTypeSelectViewController.h"

#include <functional>
#include <memory>
#include <utility>

namespace tarn {

// The one dialog of the program that picks the type of a new key's value. Main thread only.
class NewKeyValueTypeSelectWindowController final : public NSWindowController {
public:
  // `willClose`: as for every window, when the user closes the dialog.
  NewKeyValueTypeSelectWindowController(std::shared_ptr<NewKeyValueTypeSelectViewController> dialog,
                                        std::function<void()> willClose)
      : NSWindowController(dialog, dialog->window(), std::move(willClose)), dialog_(*dialog) {}

  NewKeyValueTypeSelectViewController& dialog() { return dialog_; }

private:
  NewKeyValueTypeSelectViewController& dialog_;
};

}  // namespace tarn
