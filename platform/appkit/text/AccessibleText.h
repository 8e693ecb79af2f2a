#pragma once

namespace tarn {

// From now on screen readers read our text controls: text, caret and selection. Calling it again does nothing.
void installAccessibleText();

}  // namespace tarn
