#pragma once

class QFont;

namespace tarn {

// The desktop's monospaced face, at its size or the largest below it whose line is no higher than this many pixels.
QFont monospacedFont(int maxLineHeight);

// `font`, or the same face at the largest smaller size whose line is no higher than this many pixels.
QFont fontOfHeight(const QFont& font, int maxLineHeight);

}  // namespace tarn
