#pragma once

#include <memory>

class QMenu;
class QPoint;
class QWidget;

namespace tarn {

class NSMenu;

// The toolkit's menu for these items; it belongs to `parent`.
QMenu* makeMenu(const NSMenu& menu, QWidget* parent);

// Opens the menu at a point of the screen and returns at once. The action of the item chosen runs when the menu has
// gone from the screen; it may take `owner` away.
void popUpMenu(const NSMenu& menu, QWidget& owner, const QPoint& globalPosition);

}  // namespace tarn
