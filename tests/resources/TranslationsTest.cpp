#include "platform/foundation/NSLocalizedString.h"
#include "resources/OperationTabLayout.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace tarn::test {
namespace {

// What the windows say in the language that this run is in: without one in English, the texts being their own keys.
TEST(Translations, ReachBothTheLayoutsAndTheCode) {
  const bool chinese = std::getenv("TARN_TRANSLATIONS") != nullptr;
  const OperationTabLayout tab;
  EXPECT_EQ(tab.btnSave.stringValue(), chinese ? "保存" : "Save");
  EXPECT_EQ(tab.labStatus.stringValue(), chinese ? "状态：未连接" : "Status:NotConnected");
  EXPECT_EQ(localizedString(""), "");
  EXPECT_EQ(localizedString("My Favourite"), chinese ? "我的收藏" : "My Favourite");
}

}  // namespace
}  // namespace tarn::test
