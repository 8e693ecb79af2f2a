#include "favourites/NSTabViewItemExtension.h"

namespace tarn {

double NSTabViewItemExtension::sizeOfLabel(bool computeMin) const {
  return computeMin ? 0.0 : NSTabViewItem::sizeOfLabel(computeMin);
}

NSTabLabelStyle NSTabViewItemExtension::labelStyle() const {
  return {.fontSize = 12.0, .lineHeight = 16.0, .alignRight = true, .truncateHead = true, .white = true};
}

}  // namespace tarn
