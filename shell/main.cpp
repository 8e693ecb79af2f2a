#include "favourites/MainViewController.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSLocalizedString.h"
#include "resources/Resources.h"
#include "shell/AppDelegate.h"
#include "shell/MainWindowController.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace {

// Beside the program while it is in its build folder, else where it is installed.
std::string translationsFolder() {
  std::error_code failure;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failure).parent_path();
  const std::filesystem::path built = program / "locale";
  return is_directory(built, failure) ? built.string() : (program / TARN_LOCALE_FOLDER).lexically_normal().string();
}

}  // namespace

int main(int argc, char** argv) {
  using namespace tarn;
  outliveLogReader();
  NSApplication application(argc, argv);
  useTranslations(translationsFolder());
  if (!loadResources()) return 1;

  AppDelegate delegate;
  application.setShouldTerminate([&delegate] { return delegate.applicationShouldTerminate(); });

  MainViewController content;
  MainWindowController window(content);
  window.showWindow();
  NSApplication::exitNow(application.run());
}
