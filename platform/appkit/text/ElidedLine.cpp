#include "platform/appkit/text/ElidedLine.h"

#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/DisplayText.h"
#include "platform/foundation/Utf8.h"

#include <QFontMetrics>

namespace tarn {

QString elidedLine(std::string_view text, const QFontMetrics& metrics, int width) {
  if (width <= 0) return {};
  // No more characters than would fit if each were two pixels wide, and room for those that have no width.
  const std::string_view prefix = utf8Prefix(text, static_cast<std::size_t>(width) * 2 + 256);
  QString line = displayText(toQString(prefix), TabsShow::asMark);
  if (prefix.size() < text.size()) line += QChar(u'…');
  return metrics.elidedText(line, Qt::ElideRight, width);
}

}  // namespace tarn
