#pragma once

#include "platform/appkit/MenuBuilding.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QString>
#include <QWidget>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace tarn {

// The row that a key moves to from `current` (-1: none) among `count` rows, of which `inSight` are in sight. -1 for a
// key that moves to no row.
int rowForKey(int key, int current, int count, int inSight);

// Shows the text where the pointer is; hides the tool tip for an empty text.
void showRowToolTip(const QHelpEvent& event, std::string_view text, QWidget& viewport);

// Where on the screen a menu opens: at the pointer or, asked for by the keyboard, below the current row if it is in
// sight.
QPoint menuPosition(const QContextMenuEvent& event, const QWidget& viewport, const QRect& currentRow);

// Draws what an empty list says, in the space of `viewport` below `top`.
void paintPlaceholder(QPainter& painter, const QWidget& viewport, int top, const QString& text);

// A list of rows over the toolkit's scrolling view `Area`: its tool tips, its menu, its placeholder, and the repaint
// when the keyboard comes or goes.
template <typename Area>
class RowView : public Area {
public:
  explicit RowView(QWidget* parent) : Area(parent) {}

  // May be null: no menu.
  void setMenu(std::shared_ptr<NSMenu> menu) { menu_ = std::move(menu); }
  void setPlaceholder(const QString& text) {
    placeholder_ = text;
    this->viewport()->update();
  }
  const QString& placeholder() const { return placeholder_; }

protected:
  // Empty where nothing is to be shown.
  virtual std::string toolTipAt(const QPoint& position) const = 0;
  virtual QRect currentRowRect() const = 0;

  bool viewportEvent(QEvent* event) override {
    if (event->type() != QEvent::ToolTip) return Area::viewportEvent(event);
    const auto& help = static_cast<QHelpEvent&>(*event);
    showRowToolTip(help, toolTipAt(help.pos()), *this->viewport());
    return true;
  }

  void contextMenuEvent(QContextMenuEvent* event) override {
    if (menu_) popUpMenu(*menu_, *this, menuPosition(*event, *this->viewport(), currentRowRect()));
  }

  // The colour of the selection follows the keyboard.
  void focusInEvent(QFocusEvent* event) override {
    Area::focusInEvent(event);
    this->viewport()->update();
  }
  void focusOutEvent(QFocusEvent* event) override {
    Area::focusOutEvent(event);
    this->viewport()->update();
  }

private:
  std::shared_ptr<NSMenu> menu_;
  QString placeholder_;
};

}  // namespace tarn
