#pragma once

#include <string>

namespace tarn {

// The text of the store's model "ServerItemModel", as it is compiled in; empty if it isn't there. After loadResources.
std::string serverItemModelText();

}  // namespace tarn
