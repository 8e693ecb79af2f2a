#pragma once

#include "platform/foundation/NSObject.h"
#include "wire/ServerItem.h"

#include <memory>
#include <vector>

namespace tarn {

// The root of the favourites tree: owns the servers, in the order in which the tree shows them. Main thread only.
struct MyFavouriteItem final : NSObject {
  std::vector<std::shared_ptr<ServerItem>> servers;
};

}  // namespace tarn
