#include "platform/appkit/NSApplication.h"

#include <gtest/gtest.h>

#include <QByteArray>

// Test programs with windows: the application is there before any test, as in the program itself.
int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", QByteArrayLiteral("offscreen"));
  tarn::NSApplication application(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
