#include "platform/appkit/Fonts.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetrics>

namespace tarn {

QFont monospacedFont(int maxLineHeight) {
  return fontOfHeight(QFontDatabase::systemFont(QFontDatabase::FixedFont), maxLineHeight);
}

QFont fontOfHeight(const QFont& font, int maxLineHeight) {
  QFont fitting = font;
  for (int size = QFontInfo(font).pixelSize(); size > 6 && QFontMetrics(fitting).height() > maxLineHeight; --size) {
    fitting.setPixelSize(size - 1);
  }
  return fitting;
}

}  // namespace tarn
