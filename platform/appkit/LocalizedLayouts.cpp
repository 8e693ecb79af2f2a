#include "platform/appkit/LocalizedLayouts.h"

#include "platform/appkit/Utf8.h"
#include "platform/foundation/NSLocalizedString.h"

namespace tarn {

QString LocalizedLayouts::translate(const char*, const char* sourceText, const char*, int) const {
  const std::string localized = localizedString(sourceText);
  // Nothing found: other translators may know it.
  return localized == sourceText ? QString() : toQString(localized);
}

}  // namespace tarn
