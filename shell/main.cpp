#include <cstdio>

#include "favourites/MainViewController.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSLocalizedString.h"
#include "resources/Images.h"
#include "shell/AppDelegate.h"
#include "shell/MainWindowController.h"

int main(int argc, char** argv) {
  using namespace tarn;
  outliveLogReader();
  NSApplication application(argc, argv);
  useTranslations(TARN_LOCALE_FOLDER);
  if (!loadResources()) return 1;

  AppDelegate delegate;
  if (!delegate.managedObjectModel()) {
    std::fputs("tarn: the store's model \"ServerItemModel\" can't be read\n", stderr);
    return 1;
  }
  application.setShouldTerminate([&delegate] { return delegate.applicationShouldTerminate(); });

  MainViewController content;
  MainWindowController window(content);
  window.showWindow();
  NSApplication::exitNow(application.run());
}
