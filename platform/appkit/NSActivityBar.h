#pragma once

#include "platform/appkit/NSView.h"

namespace tarn {

class ActivityBarWidget;

// A thin bar that moves while something works. It takes no room of its own, draws nothing while idle, and appears only
// when the work has lasted 300 ms.
class NSActivityBar final : public NSView {
public:
  explicit NSActivityBar(ActivityBarWidget* widget);

  void startAnimation();
  void stopAnimation();

private:
  ActivityBarWidget* bar_;
};

}  // namespace tarn
