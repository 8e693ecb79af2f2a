#include "platform/appkit/RowView.h"

#include "platform/appkit/ToolTips.h"
#include "platform/appkit/Utf8.h"

#include <QToolTip>

#include <algorithm>

namespace tarn {

int rowForKey(int key, int current, int count, int inSight) {
  if (count == 0) return -1;
  const int last = count - 1;
  const int page = std::max(1, inSight - 1);
  switch (key) {
    case Qt::Key_Up:
      return current < 0 ? last : std::max(0, current - 1);
    case Qt::Key_Down:
      return std::min(last, current + 1);
    case Qt::Key_PageUp:
      return std::max(0, current - page);
    case Qt::Key_PageDown:
      return std::min(last, current + page);
    case Qt::Key_Home:
      return 0;
    case Qt::Key_End:
      return last;
    default:
      return -1;
  }
}

void showRowToolTip(const QHelpEvent& event, std::string_view text, QWidget& viewport) {
  if (text.empty()) {
    QToolTip::hideText();
  } else {
    showPlainToolTip(event.globalPos(), toQString(text), &viewport);
  }
}

QPoint menuPosition(const QContextMenuEvent& event, const QWidget& viewport, const QRect& currentRow) {
  if (event.reason() != QContextMenuEvent::Keyboard) return event.globalPos();
  return viewport.mapToGlobal(viewport.rect().intersects(currentRow) ? currentRow.bottomLeft() : QPoint());
}

void paintPlaceholder(QPainter& painter, const QWidget& viewport, int top, const QString& text) {
  painter.setPen(viewport.palette().color(QPalette::PlaceholderText));
  painter.drawText(viewport.rect().adjusted(16, top + 16, -16, -8), Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap,
                   text);
}

}  // namespace tarn
