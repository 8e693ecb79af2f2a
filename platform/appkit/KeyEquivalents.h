#pragma once

class QKeyEvent;
class QWidget;

namespace tarn {

// The letter of the key pressed, without its modifiers but for Shift; 0 where it isn't a letter.
char charactersIgnoringModifiers(const QKeyEvent& event);

// Sends select all, copy, paste or cut, by the letter A, C, V or X, to the text under edit in the control's window.
// False where there is none, or the letter is another one.
bool performTextKeyEquivalent(QWidget& control, char character);

}  // namespace tarn
