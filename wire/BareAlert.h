#pragma once

#include <string>

namespace tarn {

// One alert on the main queue, later, and nothing else: no row and no label follows. Any thread.
void showBareAlert(std::string message);

}  // namespace tarn
