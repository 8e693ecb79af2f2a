#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSLocalizedString.h"

#include <QByteArray>
#include <gtest/gtest.h>

#include <cstdlib>

// Test programs with windows: the application is there before any test, as in the program itself. All is English,
// unless TARN_TRANSLATIONS names the folder of the catalogues: then it is the language of the environment.
int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", QByteArrayLiteral("offscreen"));
  tarn::NSApplication application(argc, argv);
  if (const char* folder = std::getenv("TARN_TRANSLATIONS")) tarn::useTranslations(folder);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
