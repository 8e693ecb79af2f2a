#include "resources/Images.h"

namespace tarn {

bool loadResources() {
  return true;
}

}  // namespace tarn
