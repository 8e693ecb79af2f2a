#include "platform/appkit/NSMenu.h"

#include <utility>

namespace tarn {

void NSMenu::addItem(std::string title, std::function<void()> action, std::string keyEquivalent) {
  items_.push_back({std::move(title), std::move(action), std::move(keyEquivalent), nullptr, false});
}

void NSMenu::addSubmenu(std::shared_ptr<NSMenu> submenu) {
  std::string title = submenu->title();
  items_.push_back({std::move(title), {}, {}, std::move(submenu), false});
}

void NSMenu::addSeparator() {
  items_.push_back({{}, {}, {}, nullptr, true});
}

}  // namespace tarn
