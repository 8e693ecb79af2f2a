#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSTextView.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/TextFieldWidget.h"
#include "platform/appkit/text/TextViewWidget.h"
#include "tests/appkit/ExactTexts.h"
#include "tests/support/widgets/Hand.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <functional>

namespace tarn::test {

namespace {

// Accepts digits, and remembers what it was asked.
struct Digits final : NSFormatter {
  explicit Digits(std::vector<std::string>& log) : asked(log) {}
  bool isPartialStringValid(std::string_view partial) const override {
    asked.emplace_back(partial);
    return partial.find_first_not_of("0123456789") == std::string_view::npos;
  }
  std::vector<std::string>& asked;
};

class TextField : public testing::Test, public NSTextFieldDelegate {
protected:
  TextField() {
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(widget);
    layout->addWidget(secondWidget);
    layout->addWidget(viewWidget);
    field.setTag(7);
    field.setDelegate(this);
    field.setAction([this] { told.push_back("action"); });
    show(window, QSize(300, 200));
    field.becomeFirstResponder();
  }

  void controlTextDidBeginEditing(int tag) override { told.push_back("begin " + std::to_string(tag)); }
  void controlTextDidEndEditing(const TextEdit& edit) override {
    EXPECT_EQ(edit.field, &field);
    EXPECT_EQ(edit.table, nullptr);
    told.push_back("end " + std::to_string(edit.tag) + " " + edit.text);
  }

  using Told = std::vector<std::string>;

  QWidget window;
  TextFieldWidget* widget = new TextFieldWidget;
  TextFieldWidget* secondWidget = new TextFieldWidget;
  TextViewWidget* viewWidget = new TextViewWidget;
  NSTextField field{widget};
  NSTextField second{secondWidget};
  Told told;
};

}  // namespace

TEST_F(TextField, GivesBackEachTextAsItWasSetPastedAndCopied) {
  const QString exact = allTreacherousTexts();
  field.setStringValue(toUtf8(exact));
  EXPECT_EQ(field.stringValue(), toUtf8(exact));
  press(Qt::Key_A, Qt::ControlModifier);
  press(Qt::Key_X, Qt::ControlModifier);
  EXPECT_EQ(field.stringValue(), "");
  EXPECT_EQ(QGuiApplication::clipboard()->text(), exact);
  press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(field.stringValue(), toUtf8(exact));
  // Every character that the caret passes over goes by Backspace, and comes back.
  for (std::size_t left = exact.size() + 1; widget->textLength() > 0;) {
    ASSERT_LT(widget->textLength(), left);
    left = widget->textLength();
    QTest::keyClick(widget, Qt::Key_Backspace);
  }
  while (widget->canUndo())
    press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(field.stringValue(), toUtf8(exact));
}

TEST_F(TextField, TellsTheBeginningAtTheFirstChangeAndTheEndOnce) {
  type("ab");
  EXPECT_EQ(told, (Told{"begin 7"}));
  for (const Qt::FocusReason reason : {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason, Qt::MenuBarFocusReason}) {
    QFocusEvent out(QEvent::FocusOut, reason);
    QApplication::sendEvent(widget, &out);
  }
  field.becomeFirstResponder();
  EXPECT_EQ(told, (Told{"begin 7"}));
  second.becomeFirstResponder();
  EXPECT_EQ(told, (Told{"begin 7", "end 7 ab"}));
  field.becomeFirstResponder();
  second.becomeFirstResponder();
  EXPECT_EQ(told.size(), 2u);
}

TEST_F(TextField, EndsTheEditOnEnterBeforeItSendsTheAction) {
  press(Qt::Key_Return);
  EXPECT_EQ(told, (Told{"action"}));
  type("a");
  press(Qt::Key_Enter);
  EXPECT_EQ(told, (Told{"action", "begin 7", "end 7 a", "action"}));
  second.becomeFirstResponder();
  EXPECT_EQ(told.size(), 4u);
}

TEST_F(TextField, EndsTheEditAlsoWhenItsWindowHasNoKeyboard) {
  type("a");
  QWidget front;
  show(front, QSize(50, 50));
  ASSERT_FALSE(window.isActiveWindow());
  EXPECT_EQ(told, (Told{"begin 7"}));
  second.becomeFirstResponder();
  EXPECT_EQ(told, (Told{"begin 7", "end 7 a"}));
}

TEST_F(TextField, TellsNothingOfATextSetByCode) {
  type("a");
  told.clear();
  field.setStringValue("set");
  second.becomeFirstResponder();
  EXPECT_TRUE(told.empty());
  field.becomeFirstResponder();
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(field.stringValue(), "set");
}

TEST_F(TextField, AsksTheFormatterBeforeEachChangeByAHandOnly) {
  Told asked;
  field.setFormatter(std::make_unique<Digits>(asked));
  field.setStringValue("x");
  EXPECT_TRUE(asked.empty());
  field.setStringValue("");
  type("1a2");
  EXPECT_EQ(asked, (Told{"1", "1a", "12"}));
  EXPECT_EQ(field.stringValue(), "12");
  QGuiApplication::clipboard()->setText(QStringLiteral("3 "));
  press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(asked.back(), "123 ");
  EXPECT_EQ(field.stringValue(), "12");
  press(Qt::Key_Backspace);
  EXPECT_EQ(asked.back(), "1");
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(asked.back(), "12");
  field.setFormatter(nullptr);
  type("a");
  EXPECT_EQ(field.stringValue(), "12a");
}

TEST_F(TextField, ShowsDotsAndGivesNoCopyOfASecret) {
  auto* secret = new SecureTextFieldWidget(&window);
  NSSecureTextField password(secret);
  secret->show();
  QGuiApplication::clipboard()->setText(QStringLiteral("before"));
  password.becomeFirstResponder();
  type("pass word");
  press(Qt::Key_A, Qt::ControlModifier);
  press(Qt::Key_C, Qt::ControlModifier);
  press(Qt::Key_X, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("before"));
  EXPECT_EQ(password.stringValue(), "pass word");
  EXPECT_EQ(secret->inputMethodQuery(Qt::ImSurroundingText).toString(), QString());
  press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(password.stringValue(), "before");
  // As many dots look alike, whatever they stand for.
  press(Qt::Key_Home);
  const QImage one = secret->grab().toImage();
  password.setStringValue("abcdef");
  press(Qt::Key_Home);
  EXPECT_EQ(secret->grab().toImage(), one);
}

TEST_F(TextField, KeepsTheCaretInSight) {
  const auto caret = [&] { return widget->inputMethodQuery(Qt::ImCursorRectangle).toRect(); };
  const std::string text(20 << 20, 'w');
  field.setStringValue(text);
  EXPECT_FALSE(widget->grab().isNull());
  type("x");
  EXPECT_TRUE(widget->rect().contains(caret()));
  press(Qt::Key_Home);
  type("y");
  EXPECT_EQ(field.stringValue(), "y" + text + "x");

  field.setStringValue(std::string(3000, 'w') + std::string(3000, 'i'));
  press(Qt::Key_Home);
  const int home = caret().x();
  for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Left}) {
    for (int i = 0; i < 6000; ++i) {
      QTest::keyClick(widget, key);
      ASSERT_TRUE(widget->rect().contains(caret())) << i;
      ASSERT_EQ(widget->positionAt(caret().center()), widget->caret()) << i;
    }
  }
  EXPECT_EQ(caret().x(), home);
}

TEST_F(TextField, SurvivesBeingTakenAwayByWhomItTells) {
  const auto typeInto = [&](const std::function<void(TextFieldWidget*)>& prepare) {
    auto* gone = new TextFieldWidget(&window);
    gone->show();
    gone->setFocus();
    prepare(gone);
    type("a");
    press(Qt::Key_Return);
  };
  const auto goesWhen = [&](auto signal) {
    return [this, signal](TextFieldWidget* gone) { QObject::connect(gone, signal, &window, [gone] { delete gone; }); };
  };
  typeInto(goesWhen(&TextInputWidget::editingBegan));
  typeInto(goesWhen(&TextInputWidget::editingEnded));
  typeInto([](TextFieldWidget* gone) {
    struct Deleting final : NSFormatter {
      explicit Deleting(TextFieldWidget* field) : gone(field) {}
      bool isPartialStringValid(std::string_view) const override {
        delete gone;
        return true;
      }
      TextFieldWidget* gone;
    };
    gone->setFormatter([deleting = std::make_shared<Deleting>(gone)] { return deleting.get(); });
  });
  EXPECT_TRUE(told.empty());
}

}  // namespace tarn::test
