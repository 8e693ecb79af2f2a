#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSTextView.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/DisplayText.h"
#include "platform/appkit/text/LabelWidget.h"
#include "platform/appkit/text/TextViewWidget.h"
#include "tests/appkit/Steps.h"

#include <QClipboard>
#include <QDrag>
#include <QInputMethodEvent>
#include <QMimeData>

namespace tarn::test {
namespace {

// A field on a desktop with a primary selection.
class SelectingField final : public TextFieldWidget {
public:
  mutable QMimeData primary;

private:
  const QMimeData* primarySelection() const override { return &primary; }
  void setPrimarySelection(const QString& text) const override { primary.setText(text); }
};

// A field and a text view, which say in `log` what they ask ("...?") and what they say to their delegates.
class TextInput : public Steps, protected NSTextFieldDelegate, protected NSTextViewDelegate {
protected:
  struct Asking final : NSFormatter {
    explicit Asking(TextInput& test) : asked(test) {}
    bool isPartialStringValid(std::string_view partial) const override { return asked.answer(std::string(partial)); }
    TextInput& asked;
  };
  TextInput() {
    show(*fieldWidget);
    window.layout()->addWidget(textWidget);
    settle();
    field.setTag(7);
    field.setDelegate(this);
    field.setAction([this] { log.add("action"); });
    field.setFormatter(std::make_unique<Asking>(*this));
    text.setDelegate(this);
    const auto mouse = [this](QTest::MouseAction action, Qt::MouseButton button, Qt::KeyboardModifiers modifiers = {}) {
      return [=, this](auto& position) { QTest::mouseEvent(action, input, button, modifiers, at(position)); };
    };
    const auto send = [this](auto&& event) { QApplication::sendEvent(input, &event); };
    // An edit of the field, or of the text view, begins with the text so marked.
    verbs["field"] = [this](auto& marked) { start(fieldWidget, marked); };
    verbs["text"] = [this](auto& marked) { start(textWidget, marked); };
    verbs["set"] = [this](auto& plain) { set(plain); };
    verbs["refuse"] = [this](auto&) { refuses = true; };
    verbs["back"] = [this](auto&) { input->setFocus(); };
    verbs["away"] = [=, this](auto&) { log.add("away"), send(QFocusEvent(QEvent::FocusOut, Qt::PopupFocusReason)); };
    verbs["menu"] = [this](auto& title) { useMenu(title); };
    verbs["drop"] = [this](auto& position) { drop(at(position)); };
    verbs["compose"] = [=](auto& composed) { send(QInputMethodEvent(toQString(composed), {})); };
    verbs["commit"] = [=, this](auto&) {
      QInputMethodEvent event;
      event.setCommitString(pasted);
      send(event);
    };
    verbs["click"] = mouse(QTest::MouseClick, Qt::LeftButton);
    verbs["shift"] = mouse(QTest::MouseClick, Qt::LeftButton, Qt::ShiftModifier);
    verbs["middle"] = mouse(QTest::MouseClick, Qt::MiddleButton);
    verbs["double"] = mouse(QTest::MouseDClick, Qt::LeftButton);
    verbs["press"] = mouse(QTest::MousePress, Qt::LeftButton);
    verbs["release"] = mouse(QTest::MouseRelease, Qt::LeftButton);
    verbs["move"] = [=, this](auto& position) {
      const QPoint to = at(position);
      send(QMouseEvent(QEvent::MouseMove, to, input->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, Qt::NoModifier));
      if (const auto* drag = input->findChild<QDrag*>()) log.add("drag " + toUtf8(drag->mimeData()->text()));
    };
  }

  bool answer(const std::string& question) {
    log.add(question + "?");
    return !refuses;
  }
  void controlTextDidEndEditing(const TextEdit& edit) override {
    EXPECT_TRUE(edit.field == &field && !edit.table);
    log.add("end " + std::to_string(edit.tag) + " " + edit.text);
  }
  void controlTextDidBeginEditing(int tag) override { log.add("begin " + std::to_string(tag)); }
  void textDidEndEditing(NSTextView&) override { log.add("ended"); }
  bool shouldChangeTextInRanges(NSTextView&, const std::vector<NSRange>& ranges,
                                const std::vector<std::string>& texts) override {
    const NSRange range = ranges.at(0);
    return answer(std::to_string(range.location) + "+" + std::to_string(range.length) + ">" + texts.at(0));
  }

  void set(const std::string& plain) { input == fieldWidget ? field.setStringValue(plain) : text.setString(plain); }
  void start(TextInputWidget* widget, const std::string& marked) {
    other->setFocus();
    log.take();
    refuses = false;
    QGuiApplication::clipboard()->setText(pasted);
    fieldWidget->primary.setText(pasted);
    QString plain = toQString(marked);
    const qsizetype anchor = plain.indexOf(u'^');
    const qsizetype caret = plain.remove(u'^').indexOf(u'|');
    input = widget;
    set(toUtf8(plain.remove(u'|')));
    input->setFocus();
    input->setSelection(std::size_t(anchor < 0 ? caret : anchor), std::size_t(caret));
  }
  // The text with "|" at the caret, "^" at the selection's other end, and "*" behind it where it is edited.
  std::string shown() override {
    QString marked = input->text();
    const auto caret = qsizetype(input->caret());
    const qsizetype end = qsizetype(input->selectionStart() + input->selectionEnd()) - caret;
    marked.insert(caret, u'|');
    if (end != caret) marked.insert(end > caret ? end + 1 : end, u'^');
    return toUtf8(marked) + (input->isEdited() ? "*" : "");
  }
  // The point of a position in the first line.
  QPoint at(const std::string& position) {
    const QString before = input->text(0, std::stoul(position));
    return input->contentsRect().topLeft() + QPoint(4 + input->fontMetrics().horizontalAdvance(before), 8);
  }

  // Opens the menu, and chooses that item; without a title it says what can be chosen.
  void useMenu(const std::string& title) {
    QMenu& menu = openMenu(*input, QPoint(5, 5));
    std::string enabled;
    for (QAction* action : menu.actions()) {
      if (action->isEnabled() && !action->isSeparator()) enabled += toUtf8(action->text()) + ".";
      if (toUtf8(action->text()) == title) action->trigger();
    }
    if (title.empty()) log.add(enabled);
    menu.close();
    test::show(window);
  }
  void drop(const QPoint& point) {
    other->setFocus();
    QMimeData dragged;
    dragged.setText(pasted);
    dragged.setHtml("<b>no</b>");
    QDragEnterEvent enter(point, Qt::CopyAction | Qt::MoveAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(input, &enter);
    QDropEvent event(point, Qt::CopyAction | Qt::MoveAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(input, &event);
    EXPECT_EQ(event.dropAction(), Qt::CopyAction);
  }

  const QString pasted = QStringLiteral("p\r\n");
  bool refuses = false;
  SelectingField* fieldWidget = new SelectingField;
  TextViewWidget* textWidget = new TextViewWidget;
  TextInputWidget* input = fieldWidget;
  NSTextField field{fieldWidget};
  NSTextView text{textWidget};
};

}  // namespace

TEST_F(TextInput, ComesBackAsItWasSetCutPastedAndUndone) {
  const std::string utf8 = toUtf8(treacherousTexts);
  LabelWidget label;
  NSTextField(&label).setStringValue(utf8);
  EXPECT_EQ(NSTextField(&label).stringValue(), utf8);
  for (TextInputWidget* widget : std::initializer_list<TextInputWidget*>{fieldWidget, textWidget}) {
    const auto get = [&] { return widget == fieldWidget ? field.stringValue() : text.string(); };
    input = widget;
    set(utf8);
    widget->setFocus();
    keys("Ctrl+A Ctrl+X");
    EXPECT_EQ(get(), "");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), treacherousTexts);
    keys("Ctrl+V");
    EXPECT_EQ(get(), utf8);
    // Every character that the caret passes over goes by Backspace, and comes back.
    for (std::size_t left = utf8.size(); widget->textLength() > 0; QTest::keyClick(widget, Qt::Key_Backspace)) {
      ASSERT_LT(widget->textLength(), left);
      left = widget->textLength();
    }
    while (widget->canUndo())
      keys("Ctrl+Z");
    EXPECT_EQ(get(), utf8);
  }
}

TEST_F(TextInput, MovesDeletesAsksAndNotifies) {
  // clang-format off
  run({// Movement and selection.
       {"field |one two  six; key Ctrl+Right Ctrl+Right", "", "one two  |six"},
       {"text one two|; key Ctrl+Left Ctrl+Shift+Left", "", "|one ^two"},
       {"field a|bc; key Shift+Right Left", "", "a|bc"},
       {"text a|bc; key Shift+Right Right", "", "ab|c"},
       {"field a|b; key End Shift+Home", "", "|ab^"},
       {"text first li|ne\nab\nthird; key Down Down", "", "first line\nab\nthird|"},
       {"text a l|ine\nof two; key End Shift+Home", "", "|a line^\nof two"},
       {"text a\n|b; key Ctrl+Home Up", "", "|a\nb"},
       {"text |a\nb; key Ctrl+Shift+End", "", "^a\nb|"},
       {"text abc\n|\u05D0\u05D1\u05D2; key Left", "", "abc\n\u05D0|\u05D1\u05D2"},
       {"text abc\n\u05D0\u05D1|\u05D2; key Right", "", "abc\n\u05D0|\u05D1\u05D2"},
       // Each change by the user is asked about, and none by code. Letters and deletes in a row are one step of undo.
       {"field one |two; key Ctrl+Backspace", "two?, begin 7", "|two*"},
       {"field |one two; key Ctrl+Delete", "two?, begin 7", "|two*"},
       {"field a|\r\nb; key Right Backspace", "ab?, begin 7", "a|b*"},
       {"field 1|; key '23 Ctrl+Z Ctrl+Shift+Z Ctrl+Z", "12?, begin 7, 123?, 1?, 123?, 1?", "1|*"},
       {"refuse; key Ctrl+Shift+Z 'a Backspace", "123?, 1a?, ?", "1|*"},
       {"field |; key 'a Left Right 'b; refuse; key Ctrl+Z", "a?, begin 7, ab?, a?", "ab|*"},
       {"field abc|; key Backspace Backspace Ctrl+Z", "ab?, begin 7, a?, abc?", "abc|*"},
       {"field |abc; key Delete Delete Ctrl+Z", "bc?, begin 7, c?, abc?", "ab|c*"},
       {"text abc|; key Backspace 'd Ctrl+Z Ctrl+Z 'e Ctrl+Shift+Z", "2+1>?, 2+0>d?, 2+1>?, 2+0>c?, 3+0>e?", "abce|*"},
       {"text |; key 'a Return 'b Ctrl+Z", "0+0>a?, 1+0>\n?, 2+0>b?, 2+1>?", "a\n|*"},
       {"field ab|; key Ctrl+Z", "", "ab|"},
       {"text \U0001F600>|; key 'a Return Tab Backspace", "3+0>a?, 4+0>\n?, 5+0>\t?, 5+1>?", "\U0001F600>a\n|*"},
       {"text ab^c|; key Ctrl+X Ctrl+Z Ctrl+Shift+Z", "2+1>?, 2+0>c?, 2+1>?", "ab|*"},
       {"text a|; key 'b; refuse; key 'z Return Backspace Ctrl+Z", "1+0>b?, 2+0>z?, 2+0>\n?, 1+1>?, 1+1>?", "ab|*"},
       {"field |1; compose ni", "", "|1"},
       {"text ab|; drop 1", "1+0>p\r\n?", "ap\r\n|b*"},
       // An edit begins and ends once.
       {"field |; key 'ab Tab", "a?, begin 7, ab?, end 7 ab", "ab|*"},
       {"field ab|; key Tab Shift+Backtab", "", "^ab|"},
       {"field |; key Return", "action", "|"},
       {"field |; key 'a Enter Tab", "a?, begin 7, end 7 a, action", "a|*"},
       {"field |; key 'a Backspace; leave; back; key 'b", "a?, begin 7, ?, end 7 , b?, begin 7", "b|*"},
       {"field |; key 'a; away; back; leave", "a?, begin 7, away, end 7 a", "a|*"},
       {"field a|; key 'b; set c; leave; back; key 'd", "ab?, begin 7, cd?, begin 7", "cd|*"},
       {"text |a; leave", "", "|a"},
       {"text a|; key 'b; away; back; leave; back; leave", "1+0>b?, away, ended", "ab|*"},
       {"text a|; key 'b; set c; leave", "1+0>b?", "c|"},
       // The pointer, and the menu, which offers what can be done and ends no edit.
       {"text |one two three\nfour; double 6", "", "one ^two| three\nfour"},
       {"text |one two three\nfour; double 6; click 6", "", "^one two three\n|four"},
       {"text |one two three; shift 6", "", "^one tw|o three"},
       {"field |one two three; press 4; move 7; release 7; move 2", "", "one ^two| three"},
       {"text ^one tw|o three; press 3; move 12; release 6", "drag one tw", "^one tw|o three"},
       {"text ^one two three|; click 6", "", "one tw|o three"},
       {"field |one two; press 0; move 3; release 3; key Delete; middle 0", " two?, begin 7, one two?", "one| two*"},
       {"field |; key 'ab; menu; menu Undo; menu", "a?, begin 7, ab?, Undo.Paste.Select All., ?, Redo.Paste.", "|*"},
       {"field ab|; menu Select All; menu; menu Cut", "Cut.Copy.Paste.Select All., ?, begin 7", "|*"}});
  // clang-format on
}

// Each puts the plain text in, is asked about, and begins an edit.
TEST_F(TextInput, EachWayInIsAskedAbout) {
  const std::string plain = toUtf8(pasted);
  for (const std::string way : {"key Ctrl+V", "menu Paste", "drop 0", "compose ni; commit", "middle 0"}) {
    run({{"field |1; " + way, plain + "1?, begin 7", plain + "|1*"}, {"field |1; refuse; " + way, plain + "1?", "|1"}});
    // The view knows only the desktop's own primary selection, and there is none.
    if (way != "middle 0") run({{"text |1; " + way, "0+0>" + plain + "?", plain + "|1*"}});
  }
  // The text that the one asked has set wins over the answer.
  for (const bool answered : {false, true}) {
    textWidget->setShouldChange([&](auto...) { return text.setString("set"), answered; });
    run({{"text a|; key Return Ctrl+Z", "", "set|"}});
  }
}

TEST_F(TextInput, PasswordShowsDotsAndGivesNoCopyAway) {
  NSSecureTextField password(fieldWidget);
  run({{"field pass word|; key Ctrl+A Ctrl+C Ctrl+X; menu", "Paste.Select All.", "^pass word|"},
       {"field |be fore; key Ctrl+Right", "", "be fore|"}});
  EXPECT_EQ(QGuiApplication::clipboard()->text(), pasted);
  EXPECT_EQ(fieldWidget->primary.text(), pasted);
  EXPECT_EQ(fieldWidget->inputMethodQuery(Qt::ImSurroundingText).toString(), QString());
  run({{"field |be fore; key Home", "", "|be fore"}});
  const QImage dots = fieldWidget->grab().toImage();
  run({{"field |abcdefg; key Home", "", "|abcdefg"}});
  EXPECT_EQ(fieldWidget->grab().toImage(), dots);
}

TEST_F(TextInput, FieldKeepsTheCaretInSight) {
  const auto caret = [&] { return fieldWidget->inputMethodQuery(Qt::ImCursorRectangle).toRect(); };
  field.setFormatter(nullptr);
  start(fieldWidget, std::string(20 << 20, 'w') + "|");
  type("x");
  EXPECT_TRUE(!fieldWidget->grab().isNull() && fieldWidget->rect().contains(caret()));
  start(fieldWidget, "|" + std::string(1100, 'w') + std::string(1100, 'i'));
  keys("Home");
  const int home = caret().x();
  for (int i = 0; i < 4400; ++i) {
    QTest::keyClick(fieldWidget, i < 2200 ? Qt::Key_Right : Qt::Key_Left);
    ASSERT_TRUE(fieldWidget->rect().contains(caret())) << i;
    ASSERT_EQ(fieldWidget->positionAt(caret().center()), fieldWidget->caret()) << i;
  }
  EXPECT_EQ(caret().x(), home);
}

TEST_F(TextInput, MayBeTakenAwayByTheOneItAsksOrNotifies) {
  const auto typeInto = [](TextInputWidget* gone) { gone->show(), gone->setFocus(), keys("'a Return"); };
  for (const auto notifies : {&TextInputWidget::editingBegan, &TextInputWidget::editingEnded}) {
    auto* gone = new TextFieldWidget(&window);
    QObject::connect(gone, notifies, &window, [gone] { delete gone; });
    typeInto(gone);
  }
  auto* gone = new TextViewWidget(&window);
  gone->setShouldChange([gone](auto...) { return delete gone, true; });
  typeInto(gone);
  EXPECT_EQ(log.take(), "");
}

TEST(DisplayText, ShowsAMarkForEachControlCharacter) {
  for (int unit = 0; unit <= 0xFFFF; ++unit) {
    const QChar character(unit);
    const QChar shown(displayUnit(character.unicode(), TabsShow::asMark));
    const bool isInvisible = character.category() == QChar::Other_Control || character.isNonCharacter();
    EXPECT_TRUE(!isInvisible || (shown.isPrint() && !shown.isSpace())) << unit;
    const bool isVisible = character.isLetterOrNumber() || character.isPunct() || character.isSurrogate();
    EXPECT_TRUE(!(isVisible || unit == 0x200D) || shown == character) << unit;
  }
  EXPECT_EQ(displayUnit(u'\t', TabsShow::asGap), u'\t');
}

}  // namespace tarn::test
