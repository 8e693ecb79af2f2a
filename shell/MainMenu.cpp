#include "shell/MainMenu.h"

#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSAlert.h"
#include "platform/foundation/NSLocalizedString.h"
#include "shell/AppDelegate.h"

#include <string>
#include <utility>

namespace tarn {

namespace {

std::shared_ptr<NSMenu> fileMenu(MainViewController& content) {
  auto menu = std::make_shared<NSMenu>(localizedString("File"));
  menu->addItem(
      localizedString("New Connection"), [&content] { content.clickNewConnection(); }, "Ctrl+N");
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
  content.addConnectionItems(*menu);
  return menu;
}

void showAbout() {
  NSAlert about;
  about.setAlertStyle(NSAlert::Style::informational);
  about.setMessageText("Tarn " TARN_VERSION);
  about.setInformativeText(localizedString("A desktop client for Redis servers"));
  about.runModal();
}

std::shared_ptr<NSMenu> helpMenu() {
  auto menu = std::make_shared<NSMenu>(localizedString("Help"));
  menu->addItem(localizedString("About Tarn"), showAbout);
  menu->addItem(localizedString("Sponsor Tarn"), [] {
    if (AppDelegate* const delegate = AppDelegate::shared()) delegate->clickedSponsor();
  });
  return menu;
}

}  // namespace

std::shared_ptr<NSMenu> mainMenu(MainViewController& content) {
  auto bar = std::make_shared<NSMenu>("Tarn");
  bar->addSubmenu(fileMenu(content));
  bar->addSubmenu(editMenu());
  bar->addSubmenu(connectionMenu(content));
  bar->addSubmenu(helpMenu());
  return bar;
}

}  // namespace tarn
