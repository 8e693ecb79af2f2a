#include "favourites/NSTabViewItemExtension.h"

namespace tarn {

double NSTabViewItemExtension::sizeOfLabel(bool computeMin) const {
  return computeMin ? 0.0 : NSTabViewItem::sizeOfLabel(computeMin);
}

}  // namespace tarn
