#include "platform/appkit/text/DisplayText.h"

namespace tarn {

namespace {

constexpr char16_t box = u'\u25AF';

}  // namespace

char16_t displayUnit(char16_t unit, TabsShow tabs) {
  if (unit == u'\t' && tabs == TabsShow::asGap) return unit;
  if (unit < 0x20) return char16_t(0x2400 + unit);
  if (unit < 0x7F) return unit;
  if (unit == 0x7F) return u'\u2421';
  if (unit < 0xA0 || unit == 0xAD) return box;
  if (unit == 0x2028) return u'\u21B5';
  if (unit == 0x2029) return u'\u00B6';
  // Those that show nothing, and turn the direction of what follows.
  if (unit == 0x200B || unit == 0x200E || unit == 0x200F || (unit >= 0x202A && unit <= 0x202E)) return box;
  if ((unit >= 0x2060 && unit <= 0x206F) || unit == 0x061C || unit == 0x180E || unit == 0xFEFF) return box;
  // Those that the toolkit's layout takes for something else, or for nothing.
  if ((unit >= 0xFDD0 && unit <= 0xFDEF) || (unit >= 0xFFF9 && unit <= 0xFFFC) || unit >= 0xFFFE) return box;
  return unit;
}

QString displayText(QStringView text, TabsShow tabs) {
  QString shown = text.toString();
  // Most texts need no mark: the copy is written to only where one stands.
  for (qsizetype i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i].unicode();
    if (const char16_t mark = displayUnit(unit, tabs); mark != unit) shown[i] = QChar(mark);
  }
  return shown;
}

QString shortened(const QString& text, qsizetype longest) {
  if (text.size() <= longest) return text;
  if (text[longest - 1].isHighSurrogate()) --longest;
  return text.left(longest) + QChar(u'…');
}

}  // namespace tarn
