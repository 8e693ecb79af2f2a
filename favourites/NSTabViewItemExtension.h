#pragma once

#include "platform/appkit/NSTabView.h"

namespace tarn {

// The tab of one connection. Its label may be cut down to nothing.
class NSTabViewItemExtension final : public NSTabViewItem {
public:
  double sizeOfLabel(bool computeMin) const override;
};

}  // namespace tarn
