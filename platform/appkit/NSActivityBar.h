#pragma once

#include <memory>

#include "platform/appkit/NSView.h"

namespace tarn {

// A thin bar that moves while something works; it takes no room of its own and draws nothing while idle.
class NSActivityBar final : public NSView {
public:
  explicit NSActivityBar(QWidget* widget);
  ~NSActivityBar() override;

  void startAnimation();
  void stopAnimation();
  bool isAnimating() const;

private:
  struct Private;
  std::unique_ptr<Private> d_;
};

}  // namespace tarn
