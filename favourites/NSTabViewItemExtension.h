#pragma once

#include "platform/appkit/NSTabView.h"

namespace tarn {

// The tab of one connection. Its label may be cut down to nothing: it loses its beginning first, and keeps the end, in
// white at the right.
class NSTabViewItemExtension final : public NSTabViewItem {
public:
  double sizeOfLabel(bool computeMin) const override;
  NSTabLabelStyle labelStyle() const override;
};

}  // namespace tarn
