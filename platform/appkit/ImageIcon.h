#pragma once

#include "platform/appkit/NSImage.h"

#include <QIcon>

namespace tarn {

// The image as the toolkit's icon: drawn anew for each size, scale and palette, so that it is sharp everywhere and its
// strokes have the colour of the text beside it. No image is a null icon.
QIcon imageIcon(const NSImage& image);

}  // namespace tarn
