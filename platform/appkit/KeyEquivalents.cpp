#include "platform/appkit/KeyEquivalents.h"

#include "platform/appkit/text/TextInputWidget.h"
#include "platform/foundation/Log.h"

#include <QKeyEvent>
#include <QWidget>

namespace tarn {

char charactersIgnoringModifiers(const QKeyEvent& event) {
  if (event.key() < Qt::Key_A || event.key() > Qt::Key_Z) return 0;
  const char first = event.modifiers() & Qt::ShiftModifier ? 'A' : 'a';
  return char(first + (event.key() - Qt::Key_A));
}

bool performTextKeyEquivalent(QWidget& control, char character) {
  logLine("NSTextField performKeyEquivalent");
  auto* text = dynamic_cast<TextInputWidget*>(control.window()->focusWidget());
  if (!text) return false;
  switch (character) {
    case 'a':
      text->selectAll();
      return true;
    case 'c':
      text->copy();
      return true;
    case 'v':
      text->paste();
      return true;
    case 'x':
      text->cut();
      return true;
    default:
      return false;
  }
}

}  // namespace tarn
