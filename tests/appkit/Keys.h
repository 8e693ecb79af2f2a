#pragma once

#include "tests/support/widgets/Hand.h"

#include <QApplication>
#include <QHelpEvent>
#include <QToolTip>

#include <utility>

namespace tarn::test {

// The tool tip that shows at a point of the widget; empty where none does.
inline QString toolTipOf(QWidget& widget, const QPoint& at = QPoint(5, 5)) {
  // The toolkit's own way to hide it takes a while.
  for (QWidget* window : QApplication::topLevelWidgets())
    if (window->inherits("QTipLabel")) window->hide();
  QHelpEvent event(QEvent::ToolTip, at, widget.mapToGlobal(at));
  QApplication::sendEvent(&widget, &event);
  return QToolTip::isVisible() ? QToolTip::text() : QString();
}

// What a control has said since the last look, in order.
class Log final {
public:
  void add(const std::string& entry) { entries_ += (entries_.empty() ? "" : ", ") + entry; }
  std::string take() { return std::exchange(entries_, {}); }

private:
  std::string entries_;
};

}  // namespace tarn::test
