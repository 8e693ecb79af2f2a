#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tarn {

// One line of a menu. Items never grey out by state.
struct NSMenuItem {
  std::string title;
  std::function<void()> action;
  std::string keyEquivalent;  // "Ctrl+Q"; empty: none
  std::shared_ptr<class NSMenu> submenu;
  bool separator = false;
};

// A menu: what a right click or the menu bar opens. The items are plain data; whoever shows the menu makes the
// toolkit's.
class NSMenu final {
public:
  explicit NSMenu(std::string title) : title_(std::move(title)) {}

  const std::string& title() const { return title_; }
  void addItem(std::string title, std::function<void()> action, std::string keyEquivalent = {});
  void addSubmenu(std::shared_ptr<NSMenu> submenu);
  void addSeparator();
  const std::vector<NSMenuItem>& items() const { return items_; }

private:
  std::string title_;
  std::vector<NSMenuItem> items_;
};

}  // namespace tarn
