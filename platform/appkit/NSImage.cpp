#include "platform/appkit/NSImage.h"

#include "platform/appkit/ImageIcon.h"
#include "platform/appkit/Utf8.h"

#include <QSvgRenderer>

namespace tarn {

NSImage NSImage::imageNamed(std::string_view name) {
  NSImage image;
  image.name_ = name;
  return image;
}

bool NSImage::exists(std::string_view name) {
  return QSvgRenderer(imageDrawing(toQString(name))).isValid();
}

}  // namespace tarn
