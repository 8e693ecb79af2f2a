#include "platform/appkit/NSActivityBar.h"

#include "platform/appkit/ActivityBarWidget.h"

namespace tarn {

NSActivityBar::NSActivityBar(ActivityBarWidget* widget) : NSView(widget), bar_(widget) {}

void NSActivityBar::startAnimation() {
  bar_->start();
}

void NSActivityBar::stopAnimation() {
  bar_->stop();
}

}  // namespace tarn
