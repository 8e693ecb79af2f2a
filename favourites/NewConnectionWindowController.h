#pragma once

#include "favourites/NewConnectionViewController.h"
#include "platform/appkit/NSWindowController.h"

#include <functional>
#include <memory>
#include <utility>

namespace tarn {

// The one window of the connection form. Main thread only.
class NewConnectionWindowController final : public NSWindowController {
public:
  // `willClose`: as for every window, when the user closes the form.
  NewConnectionWindowController(std::shared_ptr<NewConnectionViewController> form, std::function<void()> willClose)
      : NSWindowController(form, form->window(), std::move(willClose)), form_(*form) {}

  NewConnectionViewController& form() { return form_; }

private:
  NewConnectionViewController& form_;
};

}  // namespace tarn
