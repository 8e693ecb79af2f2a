#pragma once

#include <QPoint>
#include <QString>

class QWidget;

namespace tarn {

// Shows `text` as it is, whatever markup it looks like, and no more of it than a screen holds.
void showPlainToolTip(const QPoint& globalPosition, const QString& text, QWidget* owner);

// From now on the widget's tool tip shows as plain text.
void makeToolTipPlain(QWidget* widget);

}  // namespace tarn
