#include "shell/MainMenu.h"

#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSLocalizedString.h"

#include <string>
#include <utility>

namespace tarn {

namespace {

std::shared_ptr<NSMenu> fileMenu(MainViewController& content) {
  auto menu = std::make_shared<NSMenu>(localizedString("File"));
  menu->addItem(
      localizedString("Close Tab"), [&content] { content.closeSelectedTab(); }, "Ctrl+W");
  menu->addSeparator();
  menu->addItem(
      localizedString("Quit"), [] { NSApplication::shared().terminate(); }, "Ctrl+Q");
  return menu;
}

std::shared_ptr<NSMenu> editMenu() {
  auto menu = std::make_shared<NSMenu>(localizedString("Edit"));
  const auto add = [&](std::string title, NSTextAction action, std::string key) {
    menu->addItem(
        std::move(title), [action] { NSApplication::shared().sendAction(action); }, std::move(key));
  };
  add(localizedString("Undo"), NSTextAction::undo, "Ctrl+Z");
  add(localizedString("Redo"), NSTextAction::redo, "Ctrl+Shift+Z");
  menu->addSeparator();
  add(localizedString("Cut"), NSTextAction::cut, "Ctrl+X");
  add(localizedString("Copy"), NSTextAction::copy, "Ctrl+C");
  add(localizedString("Paste"), NSTextAction::paste, "Ctrl+V");
  add(localizedString("Select All"), NSTextAction::selectAll, "Ctrl+A");
  return menu;
}

std::shared_ptr<NSMenu> connectionMenu(MainViewController& content) {
  auto menu = std::make_shared<NSMenu>(localizedString("Connection"));
  menu->addItem(localizedString("(Re)Connect Selected Connection(s)"), [&content] { content.clickConnect(); });
  menu->addItem(localizedString("Close Selected Connection(s)"), [&content] { content.clickCloseConnections(); });
  menu->addItem(localizedString("Remove Selected Connection(s)"),
                [&content] { content.clickRemoveSelectedConnections(); });
  return menu;
}

}  // namespace

std::shared_ptr<NSMenu> mainMenu(MainViewController& content) {
  auto bar = std::make_shared<NSMenu>("Tarn");
  bar->addSubmenu(fileMenu(content));
  bar->addSubmenu(editMenu());
  bar->addSubmenu(connectionMenu(content));
  return bar;
}

}  // namespace tarn
