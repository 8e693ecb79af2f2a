#include "platform/appkit/text/DisplayText.h"

#include <gtest/gtest.h>

namespace tarn::test {

TEST(DisplayText, ShowsAMarkForEachControlCharacter) {
  for (int unit = 0; unit <= 0xFFFF; ++unit) {
    const QChar character{char16_t(unit)};
    const QChar shown{displayUnit(char16_t(unit), TabsShow::asMark)};
    if (character.category() == QChar::Other_Control || character.isNonCharacter()) {
      EXPECT_TRUE(shown.isPrint() && !shown.isSpace()) << unit;
    }
    if (character.isLetterOrNumber() || character.isPunct() || character.isSurrogate()) {
      EXPECT_EQ(shown, character) << unit;
    }
  }
  EXPECT_EQ(displayUnit(u'\t', TabsShow::asGap), u'\t');
  EXPECT_EQ(displayUnit(u'\u200D', TabsShow::asMark), u'\u200D');
}

}  // namespace tarn::test
