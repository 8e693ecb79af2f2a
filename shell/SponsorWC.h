#pragma once

#include "platform/appkit/NSWindowController.h"
#include "shell/SponsorVC.h"

#include <memory>

namespace tarn {

// The window of the tips. Main thread only.
class SponsorWC final : public NSWindowController {
public:
  explicit SponsorWC(std::shared_ptr<SponsorVC> content)
      : NSWindowController(content, content->window()), content_(*content) {}

  SponsorVC& content() { return content_; }

private:
  SponsorVC& content_;
};

}  // namespace tarn
