#pragma once

namespace tarn {

// Makes the images and what else the program carries known to the toolkit, and checks that all of it is there. False:
// something can't be loaded, and standard error says what. Call once, after NSApplication is made.
bool loadResources();

}  // namespace tarn
