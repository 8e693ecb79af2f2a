#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSTextView.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/DisplayText.h"
#include "platform/appkit/text/LabelWidget.h"
#include "platform/appkit/text/TextViewWidget.h"
#include "tests/appkit/ExactTexts.h"
#include "tests/appkit/Keys.h"
#include "tests/appkit/TableFixture.h"

#include <QClipboard>
#include <QTest>

namespace tarn::test {
namespace {

// One control each: `set` and `get` are the program's, `input` is what the user
// types in (null: nothing to type in).
struct ExactField {
  TextFieldWidget widget;
  NSTextField field{&widget};
  TextInputWidget* input = &widget;
  ExactField() {
    show(widget, {200, 40});
    widget.setFocus();
  }
  void set(const std::string& text) { field.setStringValue(text); }
  std::string get() const { return field.stringValue(); }
};

struct ExactView {
  TextViewWidget widget;
  NSTextView view{&widget};
  TextInputWidget* input = &widget;
  ExactView() {
    show(widget, {200, 200});
    widget.setFocus();
  }
  void set(const std::string& text) { view.setString(text); }
  std::string get() const { return view.string(); }
};

struct ExactCell : TableFixture {
  TextInputWidget* input = &editor();
  void TestBody() override {}
  void set(const std::string& text) {
    texts[{0, 0}] = text;
    fill(1);
    EXPECT_EQ(cell(0, 0).stringValue(), text);
    open(0, 0);
  }
  std::string get() { return cell(0, 0).stringValue(); }
};

struct ExactLabel {
  LabelWidget widget;
  NSTextField field{&widget};
  TextInputWidget* input = nullptr;
  void set(const std::string& text) { field.setStringValue(text); }
  std::string get() const { return field.stringValue(); }
};

template <typename Control>
class ExactText : public testing::Test {};
using ExactControls = testing::Types<ExactField, ExactView, ExactCell, ExactLabel>;
TYPED_TEST_SUITE(ExactText, ExactControls);

}  // namespace

TYPED_TEST(ExactText, ComesBackAsItWasSetCutPastedAndUndone) {
  TypeParam control;
  const QString text = allTreacherousTexts();
  const std::string utf8 = toUtf8(text);
  control.set(utf8);
  EXPECT_EQ(control.get(), utf8);
  if (!control.input) return;
  keys("Ctrl+A Ctrl+X");
  EXPECT_EQ(control.get(), "");
  EXPECT_EQ(QGuiApplication::clipboard()->text(), text);
  keys("Ctrl+V");
  EXPECT_EQ(control.get(), utf8);
  // Every character that the caret passes over goes by Backspace, and comes
  // back.
  for (std::size_t left = utf8.size(); control.input->textLength() > 0;) {
    ASSERT_LT(control.input->textLength(), left);
    left = control.input->textLength();
    QTest::keyClick(control.input, Qt::Key_Backspace);
  }
  while (control.input->canUndo())
    keys("Ctrl+Z");
  EXPECT_EQ(control.get(), utf8);
}

TEST(DisplayText, ShowsAMarkForEachControlCharacter) {
  for (int unit = 0; unit <= 0xFFFF; ++unit) {
    const QChar character{char16_t(unit)};
    const QChar shown{displayUnit(char16_t(unit), TabsShow::asMark)};
    if (character.category() == QChar::Other_Control || character.isNonCharacter()) {
      EXPECT_TRUE(shown.isPrint() && !shown.isSpace()) << unit;
    }
    if (character.isLetterOrNumber() || character.isPunct() || character.isSurrogate() || unit == 0x200D) {
      EXPECT_EQ(shown, character) << unit;
    }
  }
  EXPECT_EQ(displayUnit(u'\t', TabsShow::asGap), u'\t');
}

}  // namespace tarn::test
