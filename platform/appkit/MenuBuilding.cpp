#include "platform/appkit/MenuBuilding.h"

#include "platform/appkit/NSMenu.h"
#include "platform/appkit/Utf8.h"

#include <QAction>
#include <QMenu>

namespace tarn {

QMenu* makeMenu(const NSMenu& menu, QWidget* parent) {
  auto* made = new QMenu(literalTitle(menu.title()), parent);
  made->setAccessibleName(toQString(menu.title()));
  for (const NSMenuItem& item : menu.items()) {
    if (item.separator) {
      made->addSeparator();
    } else if (item.submenu) {
      made->addMenu(makeMenu(*item.submenu, made));
    } else {
      QAction* action = made->addAction(literalTitle(item.title));
      if (!item.keyEquivalent.empty()) action->setShortcut(QKeySequence(toQString(item.keyEquivalent)));
      QObject::connect(action, &QAction::triggered, action, [run = item.action] {
        if (run) run();
      });
    }
  }
  return made;
}

void popUpMenu(const NSMenu& menu, QWidget& owner, const QPoint& globalPosition) {
  QMenu* made = makeMenu(menu, &owner);
  made->setAttribute(Qt::WA_DeleteOnClose);
  made->popup(globalPosition);
}

}  // namespace tarn
