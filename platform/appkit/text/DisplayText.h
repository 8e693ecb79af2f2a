#pragma once

#include <QString>

namespace tarn {

// The text as it is drawn: as many code units, each character that would be invisible or would end a line replaced by a
// mark.
enum class TabsShow { asMark, asGap };
QString displayText(QStringView text, TabsShow tabs);

// The mark that stands for `unit`, or `unit` itself.
char16_t displayUnit(char16_t unit, TabsShow tabs);

// The text, or its beginning and an ellipsis where it has more than `longest` code units. No surrogate pair is split.
QString shortened(const QString& text, qsizetype longest);

}  // namespace tarn
