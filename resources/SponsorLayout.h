#pragma once

#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSWindow.h"

#include <memory>

namespace tarn {

// The window of the tips, one button each. Owns all of it; every control has the name of its field.
class SponsorLayout final {
private:
  struct Widgets;
  std::unique_ptr<Widgets> widgets_;

public:
  SponsorLayout();
  ~SponsorLayout();

  NSWindow window;
  NSButton btnSponsor1;
  NSButton btnSponsor2;
  NSButton btnSponsor3;
  NSButton btnSponsor4;
  NSButton btnSponsor5;
};

}  // namespace tarn
