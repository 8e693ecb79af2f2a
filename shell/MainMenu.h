#pragma once

#include "favourites/MainViewController.h"
#include "platform/appkit/NSMenu.h"

#include <memory>

namespace tarn {

// The menu bar of the main window, whose commands act on `content`; it outlives the menu. Main thread only.
std::shared_ptr<NSMenu> mainMenu(MainViewController& content);

}  // namespace tarn
