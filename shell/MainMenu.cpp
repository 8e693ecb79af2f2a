#include "shell/MainMenu.h"

#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSLocalizedString.h"

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
  bar->addSubmenu(connectionMenu(content));
  return bar;
}

}  // namespace tarn
