#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSTextView.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/TextFieldWidget.h"
#include "platform/appkit/text/TextViewWidget.h"
#include "tests/appkit/Keys.h"

#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QInputMethodEvent>
#include <QMenu>
#include <QMimeData>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <functional>

namespace tarn::test {
namespace {

struct Digits final : NSFormatter {
  explicit Digits(Log& askedLog) : asked(askedLog) {}
  bool isPartialStringValid(std::string_view partial) const override {
    asked.add(std::string(partial));
    return partial.find_first_not_of("0123456789") == std::string_view::npos;
  }
  Log& asked;
};

// A field on a desktop with a primary selection.
class SelectingField final : public TextFieldWidget {
public:
  using TextFieldWidget::TextFieldWidget;
  mutable QMimeData primary;

private:
  const QMimeData* primarySelection() const override { return &primary; }
  void setPrimarySelection(const QString& text) const override { primary.setText(text); }
};

// A field, another one, and a text view, which say in `log` whatever they say
// to their delegates.
class TextInput : public testing::Test, protected NSTextFieldDelegate, protected NSTextViewDelegate {
protected:
  TextInput() {
    auto* layout = new QVBoxLayout(&window);
    for (QWidget* widget : std::initializer_list<QWidget*>{fieldWidget, secondWidget, viewWidget})
      layout->addWidget(widget);
    field.setTag(7);
    field.setDelegate(this);
    field.setAction([this] { log.add("action"); });
    view.setDelegate(this);
    show(window, QSize(420, 340));
    field.becomeFirstResponder();
  }

  void controlTextDidBeginEditing(int tag) override { log.add("begin " + std::to_string(tag)); }
  void controlTextDidEndEditing(const TextEdit& edit) override {
    EXPECT_TRUE(edit.field == &field && !edit.table);
    log.add("end " + std::to_string(edit.tag) + " " + edit.text);
  }
  void textDidEndEditing(NSTextView&) override { log.add("ended"); }
  bool shouldChangeTextInRanges(NSTextView&, const std::vector<NSRange>& ranges,
                                const std::vector<std::string>& replacements) override {
    log.add(std::to_string(ranges.at(0).location) + "+" + std::to_string(ranges.at(0).length) + ">" +
            replacements.at(0));
    return !answer || answer();
  }

  void start(const std::string& text = {}, std::size_t caret = 0) {
    view.setString(text);
    viewWidget->setFocus();
    viewWidget->setSelection(caret, caret);
    log.take();
  }
  // The view's text with "|" at the caret and "^" at the selection's other end.
  std::string marked() const {
    QString text = viewWidget->text();
    const auto caret = qsizetype(viewWidget->caret());
    const qsizetype other = qsizetype(viewWidget->selectionStart() + viewWidget->selectionEnd()) - caret;
    text.insert(caret, u'|');
    if (other != caret) text.insert(other > caret ? other + 1 : other, u'^');
    return toUtf8(text);
  }

  static void leaveForAMoment(QWidget& widget) {
    for (const Qt::FocusReason reason : {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason, Qt::MenuBarFocusReason}) {
      QFocusEvent out(QEvent::FocusOut, reason);
      QApplication::sendEvent(&widget, &out);
    }
  }
  // Opens the menu over the control, and answers the titles of what can be
  // chosen.
  static std::string openMenu(QWidget& widget) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), widget.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&widget, &event);
    std::string enabled;
    for (const QAction* action : openPopUp()->actions())
      if (action->isEnabled() && !action->isSeparator()) enabled += toUtf8(action->text()) + ".";
    return enabled;
  }
  // Triggers an item of the open menu, if one is named, and closes it.
  void choose(const char* title = "") {
    auto* menu = qobject_cast<QMenu*>(openPopUp());
    for (QAction* action : menu->actions())
      if (action->text() == QLatin1String(title)) action->trigger();
    menu->close();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    settle();
  }
  static void drop(QWidget& widget, const QString& text) {
    QMimeData dragged;
    dragged.setText(text);
    dragged.setHtml(QStringLiteral("<b>no</b>"));
    QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction | Qt::MoveAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    const QImage before = widget.grab().toImage();
    QApplication::sendEvent(&widget, &enter);
    EXPECT_NE(widget.grab().toImage(), before);
    QDropEvent event(QPointF(1, 1), Qt::CopyAction | Qt::MoveAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
    EXPECT_EQ(event.dropAction(), Qt::CopyAction);
  }
  static void compose(QWidget& widget, const QString& composed, const QString& committed = {}) {
    QInputMethodEvent event(composed, {});
    event.setCommitString(committed);
    QApplication::sendEvent(&widget, &event);
  }
  // In the word "two" of "one two three" in the view.
  QPoint inTwo() const {
    return viewWidget->contentsRect().topLeft() + QPoint(4 + viewWidget->fontMetrics().horizontalAdvance("one tw"), 8);
  }

  QWidget window;
  SelectingField* fieldWidget = new SelectingField;
  TextFieldWidget* secondWidget = new TextFieldWidget;
  TextViewWidget* viewWidget = new TextViewWidget;
  NSTextField field{fieldWidget};
  NSTextField second{secondWidget};
  NSTextView view{viewWidget};
  Log log;
  std::function<bool()> answer;
};

}  // namespace

TEST_F(TextInput, FieldSaysWhenAnEditBeginsAndEnds) {
  // clang-format off
  for (const auto& [pressed, said] : std::vector<std::pair<const char*, std::string>>{
           {"'ab", "begin 7"},
           {"'ab Tab", "begin 7, end 7 ab"},
           {"Tab Shift+Backtab Tab", ""},
           {"Return", "action"},
           {"'a Enter Tab", "begin 7, end 7 a, action"},
           {"'a Backspace Tab Shift+Backtab 'b", "begin 7, end 7 , begin 7"}}) {
    // clang-format on
    SCOPED_TRACE(pressed);
    field.setStringValue("");
    field.becomeFirstResponder();
    keys(pressed);
    EXPECT_EQ(log.take(), said);
  }
  // Set by code it is unchanged again, and there is nothing to undo.
  field.setStringValue("set");
  second.becomeFirstResponder();
  field.becomeFirstResponder();
  keys("Ctrl+Z");
  EXPECT_EQ(field.stringValue(), "set");
  EXPECT_EQ(log.take(), "");
}

TEST_F(TextInput, AnEditGoesOnWhileTheFocusIsAwayForAMomentAndEndsBehindAnotherWindowToo) {
  type("a");
  leaveForAMoment(*fieldWidget);
  field.becomeFirstResponder();
  QWidget front;
  show(front, QSize(50, 50));
  ASSERT_FALSE(window.isActiveWindow());
  EXPECT_EQ(log.take(), "begin 7");
  second.becomeFirstResponder();
  EXPECT_EQ(log.take(), "end 7 a");
}

TEST_F(TextInput, ViewSaysOnceThatAnEditHasEnded) {
  start("a");
  second.becomeFirstResponder();
  EXPECT_EQ(log.take(), "");
  start("a", 1);
  type("b");
  EXPECT_TRUE(view.isEdited());
  leaveForAMoment(*viewWidget);
  EXPECT_EQ(log.take(), "1+0>b");
  second.becomeFirstResponder();
  EXPECT_EQ(log.take(), "ended");
  EXPECT_TRUE(view.isEdited());
  viewWidget->setFocus();
  second.becomeFirstResponder();
  viewWidget->setFocus();
  type("c");
  view.setString("d");
  EXPECT_FALSE(view.isEdited());
  second.becomeFirstResponder();
  EXPECT_EQ(log.take(), "2+0>c");
}

TEST_F(TextInput, FormatterIsAskedBeforeEachChangeByTheUserOnly) {
  Log asked;
  field.setFormatter(std::make_unique<Digits>(asked));
  field.setStringValue("x");
  EXPECT_EQ(asked.take(), "");
  field.setStringValue("");
  QGuiApplication::clipboard()->setText(QStringLiteral("3 "));
  for (const auto& [pressed, questions] : std::vector<std::pair<const char*, std::string>>{
           {"'1a2", "1, 1a, 12"}, {"Ctrl+V", "123 "}, {"Backspace", "1"}, {"Ctrl+Z", "12"}, {"Ctrl+Shift+Z", "1"}}) {
    keys(pressed);
    EXPECT_EQ(asked.take(), questions);
  }
  field.setFormatter(nullptr);
  type("a");
  EXPECT_EQ(field.stringValue(), "1a");
}

TEST_F(TextInput, ViewAsksBeforeEveryChangeByTheUser) {
  start("\U0001F600>", 3);
  QGuiApplication::clipboard()->setText(QStringLiteral("x\r\ny"));
  // clang-format off
  for (const auto& [pressed, question] : std::vector<std::pair<const char*, std::string>>{
           {"'a", "3+0>a"}, {"Return", "4+0>\n"}, {"Tab", "5+0>\t"}, {"Backspace", "5+1>"}, {"Ctrl+Z", "5+0>\t"},
           {"Ctrl+V", "6+0>x\r\ny"}, {"Shift+Left Shift+Left Ctrl+X", "7+3>"}}) {
    // clang-format on
    keys(pressed);
    EXPECT_EQ(log.take(), question) << pressed;
  }
  answer = [] { return false; };
  const std::string kept = view.string();
  keys("'z Backspace Ctrl+Z Ctrl+V Return");
  EXPECT_EQ(view.string(), kept);
  // The delegate may set the text by itself, and that wins over its yes.
  for (const bool answered : {false, true}) {
    answer = [&] {
      view.setString("local: \nreply\nlocal: ");
      return answered;
    };
    keys("Return");
    EXPECT_EQ(marked(), "local: \nreply\nlocal: |");
    EXPECT_FALSE(view.isEdited() || viewWidget->canUndo());
  }
}

// Menu, drop, primary selection and input method: each puts plain text in, is
// asked about, and begins an edit.
TEST_F(TextInput, EachWayIntoAFieldIsAskedAbout) {
  const QString text = QStringLiteral("4\u2028");
  fieldWidget->primary.setText(text);
  QGuiApplication::clipboard()->setText(text);
  Log asked;
  for (const auto& insert : std::initializer_list<std::function<void()>>{
           [&] {
             openMenu(*fieldWidget);
             choose("Paste");
           },
           [&] { second.becomeFirstResponder(), drop(*fieldWidget, text); },
           [&] { QTest::mouseClick(fieldWidget, Qt::MiddleButton, {}, QPoint(1, 8)); },
           [&] {
             compose(*fieldWidget, QStringLiteral("ni"));
             EXPECT_EQ(field.stringValue(), "1");
             compose(*fieldWidget, {}, text);
           }}) {
    field.setFormatter(nullptr);
    field.setStringValue("1");
    second.becomeFirstResponder();
    fieldWidget->setFocus();
    keys("Home");
    insert();
    EXPECT_EQ(field.stringValue(), toUtf8(text) + "1");
    EXPECT_EQ(log.take(), "begin 7");
    field.setFormatter(std::make_unique<Digits>(asked));
    field.setStringValue("1");
    keys("Home");
    insert();
    EXPECT_EQ(asked.take(), toUtf8(text) + "1");
    EXPECT_EQ(field.stringValue(), "1");
  }
}

TEST_F(TextInput, MenuOffersWhatCanBeDone) {
  QGuiApplication::clipboard()->clear();
  EXPECT_EQ(openMenu(*fieldWidget), "");
  choose();
  type("ab");
  EXPECT_EQ(openMenu(*fieldWidget), "Undo.Select All.");
  choose("Select All");
  EXPECT_EQ(openMenu(*fieldWidget), "Undo.Cut.Copy.Select All.");
  choose("Cut");
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("ab"));
  EXPECT_EQ(openMenu(*fieldWidget), "Undo.Paste.");
  choose("Undo");
  EXPECT_EQ(field.stringValue(), "ab");
  EXPECT_EQ(openMenu(*fieldWidget), "Undo.Redo.Paste.Select All.");
  choose();
  // What the menus were open for has ended no edit.
  EXPECT_EQ(log.take(), "begin 7");
}

TEST_F(TextInput, MouseSelectsAndTakesASelectionAlong) {
  const auto move = [](QWidget& widget, const QPoint& to) {
    QMouseEvent event(QEvent::MouseMove, to, widget.mapToGlobal(to), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
  };
  start("one two three\nfour");
  QTest::mouseDClick(viewWidget, Qt::LeftButton, {}, inTwo());
  EXPECT_EQ(marked(), "one ^two| three\nfour");
  QTest::mouseClick(viewWidget, Qt::LeftButton, {}, inTwo());
  EXPECT_EQ(marked(), "^one two three\n|four");
  viewWidget->setSelection(0, 0);
  QTest::mouseClick(viewWidget, Qt::LeftButton, Qt::ShiftModifier, inTwo());
  EXPECT_EQ(marked(), "^one tw|o three\nfour");
  // A press inside a selection may carry a copy of it; a click there drops it.
  QTest::mousePress(viewWidget, Qt::LeftButton, {}, inTwo() - QPoint(20, 0));
  move(*viewWidget, inTwo() + QPoint(60, 0));
  const auto* drag = viewWidget->findChild<QDrag*>();
  ASSERT_NE(drag, nullptr);
  EXPECT_EQ(drag->mimeData()->text(), QStringLiteral("one tw"));
  QTest::mouseRelease(viewWidget, Qt::LeftButton, {}, inTwo());
  viewWidget->setSelection(0, 13);
  QTest::mouseClick(viewWidget, Qt::LeftButton, {}, inTwo());
  EXPECT_EQ(marked(), "one tw|o three\nfour");

  field.setStringValue("select");
  QTest::mousePress(fieldWidget, Qt::LeftButton, {}, QPoint(1, 8));
  move(*fieldWidget, QPoint(300, 8));
  QTest::mouseRelease(fieldWidget, Qt::LeftButton, {}, QPoint(300, 8));
  EXPECT_EQ(fieldWidget->primary.text(), QStringLiteral("select"));
}

TEST_F(TextInput, KeysMoveSelectDeleteAndUndo) {
  const std::string line(2500, 'x');
  struct Case {
    std::string text;
    std::size_t caret;
    const char* pressed;
    std::string expected;
  };
  // clang-format off
  for (const auto& [text, caret, pressed, expected] : std::vector<Case>{
           {"one two  six", 0, "Ctrl+Right Ctrl+Right", "one two  |six"},
           {"one two", 7, "Ctrl+Left Ctrl+Shift+Left", "|one ^two"},
           {"one two", 4, "Ctrl+Backspace", "|two"},
           {"one two", 0, "Ctrl+Delete", "|two"},
           {"abc", 1, "Shift+Right Left", "a|bc"},
           {"abc", 1, "Shift+Right Right", "ab|c"},
           {"abc", 1, "Shift+Right Delete", "a|c"},
           {"a\r\nb", 1, "Right Backspace", "a|b"},
           {"first line\nab\nthird", 8, "Down Down", "first line\nab\nthird|"},
           {"a line\nof two", 3, "End Shift+Home", "|a line^\nof two"},
           {"a\nb", 2, "Ctrl+Home Up", "|a\nb"},
           {"a\nb", 0, "Ctrl+Shift+End", "^a\nb|"},
           {line, 0, "Ctrl+Right Ctrl+Right Ctrl+Right", line + "|"},
           {"abc\n\u05D0\u05D1\u05D2", 4, "Left", "abc\n\u05D0|\u05D1\u05D2"},
           {"abc\n\u05D0\u05D1\u05D2", 6, "Right", "abc\n\u05D0|\u05D1\u05D2"},
           {"", 0, "'abc Ctrl+Z", "|"},
           {"", 0, "'abc Ctrl+Z Ctrl+Shift+Z", "abc|"},
           {"", 0, "'a Left Right 'b Ctrl+Z", "a|"},
           {"", 0, "'a Return 'b Ctrl+Z", "a\n|"},
           {"abc", 3, "Backspace Backspace Ctrl+Z", "abc|"},
           {"abc", 0, "Delete Delete Ctrl+Z", "ab|c"},
           {"abc", 3, "Backspace 'd Ctrl+Z Ctrl+Z 'e Ctrl+Shift+Z", "abce|"}}) {
    // clang-format on
    start(text, caret);
    keys(pressed);
    EXPECT_EQ(marked(), expected) << pressed;
  }
  // One character at a time, over the ends of blocks.
  start(line);
  for (std::size_t at = 1; at <= line.size(); ++at) {
    QTest::keyClick(viewWidget, Qt::Key_Right);
    ASSERT_EQ(viewWidget->caret(), at);
  }
}

TEST_F(TextInput, PasswordShowsDotsAndGivesNoCopyAway) {
  auto* secret = new SecureTextFieldWidget(&window);
  NSSecureTextField password(secret);
  secret->show();
  QGuiApplication::clipboard()->setText(QStringLiteral("before"));
  password.becomeFirstResponder();
  keys("'pass 'word Ctrl+A Ctrl+C Ctrl+X");
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("before"));
  EXPECT_EQ(openMenu(*secret), "Undo.Paste.Select All.");
  choose();
  EXPECT_EQ(password.stringValue(), "password");
  EXPECT_EQ(secret->inputMethodQuery(Qt::ImSurroundingText).toString(), QString());
  // As many dots look alike, and no step shows where a word ends.
  password.setStringValue("be fore");
  keys("Home");
  const QImage dots = secret->grab().toImage();
  password.setStringValue("abcdefg");
  keys("Home");
  EXPECT_EQ(secret->grab().toImage(), dots);
  password.setStringValue("be fore");
  keys("Home Ctrl+Right");
  EXPECT_EQ(secret->caret(), 7U);
}

TEST_F(TextInput, FieldKeepsTheCaretInSight) {
  const auto caret = [&] { return fieldWidget->inputMethodQuery(Qt::ImCursorRectangle).toRect(); };
  const std::string text(20 << 20, 'w');
  field.setStringValue(text);
  EXPECT_FALSE(fieldWidget->grab().isNull());
  type("x");
  EXPECT_TRUE(fieldWidget->rect().contains(caret()));
  keys("Home 'y");
  EXPECT_EQ(field.stringValue(), "y" + text + "x");
  field.setStringValue(std::string(1100, 'w') + std::string(1100, 'i'));
  keys("Home");
  const int home = caret().x();
  for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Left}) {
    for (int i = 0; i < 2200; ++i) {
      QTest::keyClick(fieldWidget, key);
      ASSERT_TRUE(fieldWidget->rect().contains(caret())) << i;
      ASSERT_EQ(fieldWidget->positionAt(caret().center()), fieldWidget->caret()) << i;
    }
  }
  EXPECT_EQ(caret().x(), home);
}

TEST_F(TextInput, MayBeTakenAwayByTheOneItAsksOrNotifies) {
  struct Deleting final : NSFormatter {
    explicit Deleting(TextFieldWidget* field) : gone(field) {}
    bool isPartialStringValid(std::string_view) const override {
      delete gone;
      return true;
    }
    TextFieldWidget* gone;
  };
  for (int when = 0; when < 3; ++when) {
    auto* gone = new TextFieldWidget(&window);
    gone->show();
    gone->setFocus();
    if (when == 0) QObject::connect(gone, &TextInputWidget::editingBegan, &window, [gone] { delete gone; });
    if (when == 1) QObject::connect(gone, &TextInputWidget::editingEnded, &window, [gone] { delete gone; });
    if (when == 2) gone->setFormatter([deleting = std::make_shared<Deleting>(gone)] { return deleting.get(); });
    keys("'a Return");
  }
  EXPECT_EQ(log.take(), "");
}

}  // namespace tarn::test
