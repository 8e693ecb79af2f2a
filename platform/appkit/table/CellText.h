#pragma once

#include <QString>

#include <cstddef>
#include <string_view>

class QFontMetrics;

namespace tarn {

// What is painted of a text on one line `width` pixels wide: the rest is elided at the end and invisible characters
// show as marks. The cost follows the width, whatever the length of the text.
QString elidedLine(std::string_view text, const QFontMetrics& metrics, int width);

// The beginning of a UTF-8 text, at most this many bytes, never ending inside a character.
std::string_view utf8Prefix(std::string_view text, std::size_t maxBytes);

}  // namespace tarn
