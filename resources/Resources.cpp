#include "resources/Resources.h"

#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSImage.h"

#include <QtGlobal>

#include <iostream>

// The toolkit's macro names a function of the global namespace.
static void registerCompiledResources() {
  Q_INIT_RESOURCE(resources);
}

namespace tarn {

namespace {

bool imagesAreThere() {
  bool all = true;
  for (const char* name :
       {"add", "alert-critical", "alert-information", "alert-warning", "clear", "close", "connect", "db", "disconnect",
        "edit", "reload", "remove", "server", "server-connecting", "server-disconnected", "server-running", "tarn"}) {
    if (NSImage::exists(name)) continue;
    std::cerr << "tarn: the image \"" << name << "\" can't be loaded\n";
    all = false;
  }
  return all;
}

}  // namespace

bool loadResources() {
  registerCompiledResources();
  const bool all = imagesAreThere();
  if (all) NSApplication::shared().setApplicationIconImage(NSImage::imageNamed("tarn"));
  return all;
}

}  // namespace tarn
