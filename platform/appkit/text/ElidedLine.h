#pragma once

#include <QString>

#include <string_view>

class QFontMetrics;

namespace tarn {

// What is painted of a text on one line `width` pixels wide: the rest is elided at the end and invisible characters
// show as marks. The cost follows the width, whatever the length of the text.
QString elidedLine(std::string_view text, const QFontMetrics& metrics, int width);

}  // namespace tarn
