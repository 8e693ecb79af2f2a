#pragma once

#include "platform/appkit/NSImage.h"

#include <QByteArray>
#include <QIcon>
#include <QString>

namespace tarn {

// The image as the toolkit's icon: drawn anew for each size, scale and palette, so that it is sharp everywhere and its
// strokes have the colour of the text beside it. No image is a null icon.
QIcon imageIcon(const NSImage& image);

// The drawing behind the image of this name, as SVG; empty where there is none.
QByteArray imageDrawing(const QString& name);

}  // namespace tarn
