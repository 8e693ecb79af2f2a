#include "platform/appkit/ToolTips.h"

#include "platform/appkit/text/DisplayText.h"

#include <QCoreApplication>
#include <QHelpEvent>
#include <QToolTip>
#include <QWidget>

namespace tarn {

namespace {

constexpr qsizetype longestPlainText = 2000;

class PlainToolTips final : public QObject {
public:
  using QObject::QObject;

protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::ToolTip) return false;
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget || widget->toolTip().isEmpty()) return false;
    showPlainToolTip(static_cast<QHelpEvent*>(event)->globalPos(), widget->toolTip(), widget);
    return true;
  }
};

}  // namespace

void showPlainToolTip(const QPoint& globalPosition, const QString& text, QWidget* owner) {
  QString shown = shortened(text, longestPlainText);
  shown.replace(QChar::Null, QChar(0x2400));
  QToolTip::showText(
      globalPosition,
      QStringLiteral("<p style='white-space:pre-wrap'>") + shown.toHtmlEscaped() + QStringLiteral("</p>"), owner);
}

void makeToolTipPlain(QWidget* widget) {
  // One filter does for all widgets; installing it again only moves it to the front.
  static auto* filter = new PlainToolTips(QCoreApplication::instance());
  widget->installEventFilter(filter);
}

}  // namespace tarn
