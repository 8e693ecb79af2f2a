#include "platform/appkit/NSTextView.h"
#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/TextViewWidget.h"
#include "tests/appkit/ExactTexts.h"
#include "tests/support/widgets/Hand.h"

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace tarn::test {

namespace {

struct Recorder final : NSTextViewDelegate {
  struct Asked {
    NSRange range;
    std::string replacement;
  };

  void textDidEndEditing(NSTextView&) override { ++ended; }
  bool shouldChangeTextInRanges(NSTextView& view, const std::vector<NSRange>& ranges,
                                const std::vector<std::string>& replacements) override {
    asked.push_back({ranges.at(0), replacements.at(0)});
    return !answer || answer(view);
  }

  std::vector<Asked> asked;
  std::function<bool(NSTextView&)> answer;
  int ended = 0;
};

class TextView : public testing::Test {
protected:
  TextView() {
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(widget);
    layout->addWidget(other);
    view.setDelegate(&delegate);
    show(window, QSize(420, 300));
    widget->setFocus();
  }

  void select(std::size_t location, std::size_t length = 0) { widget->setSelection(location, location + length); }
  // In the word "two" of the first row.
  QPoint inTwo() const {
    return widget->contentsRect().topLeft() + QPoint(4 + widget->fontMetrics().horizontalAdvance("one tw"), 8);
  }
  void setClipboard(const QString& text) { QGuiApplication::clipboard()->setText(text); }
  QString text() const { return toQString(view.string()); }
  std::size_t caret() const { return view.selectedRange().location; }

  QWidget window;
  TextViewWidget* widget = new TextViewWidget;
  QLineEdit* other = new QLineEdit;
  Recorder delegate;
  NSTextView view{widget};
};

}  // namespace

TEST_F(TextView, GivesBackEachTextAsItWasSetPastedAndCopied) {
  const QString exact = allTreacherousTexts();
  view.setString(toUtf8(exact));
  EXPECT_EQ(text(), exact);
  EXPECT_EQ(view.length(), std::size_t(exact.size()));
  press(Qt::Key_A, Qt::ControlModifier);
  press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), exact);

  view.setString("<>");
  select(1);
  press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(text(), u'<' + exact + u'>');
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(view.string(), "<>");
  press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(text(), u'<' + exact + u'>');
}

TEST_F(TextView, AsksBeforeEveryChangeByAHand) {
  view.setString("\U0001F600>");
  EXPECT_TRUE(delegate.asked.empty());
  const auto expectAsked = [&](std::size_t location, std::size_t length, const std::string& replacement) {
    ASSERT_FALSE(delegate.asked.empty());
    EXPECT_EQ(delegate.asked.back().range.location, location);
    EXPECT_EQ(delegate.asked.back().range.length, length);
    EXPECT_EQ(delegate.asked.back().replacement, replacement);
    delegate.asked.clear();
  };
  setClipboard(QStringLiteral("x\r\ny"));
  struct Change {
    std::function<void()> make;
    std::size_t location;
    std::size_t length;
    std::string replacement;
  };
  for (const Change& change : {Change{[] { type("a"); }, 3, 0, "a"},
                               {[] { press(Qt::Key_Return); }, 4, 0, "\n"},
                               {[] { press(Qt::Key_Tab); }, 5, 0, "\t"},
                               {[] { press(Qt::Key_Backspace); }, 5, 1, ""},
                               {[] { press(Qt::Key_Z, Qt::ControlModifier); }, 5, 0, "\t"},
                               {[] { press(Qt::Key_V, Qt::ControlModifier); }, 6, 0, "x\r\ny"}}) {
    change.make();
    expectAsked(change.location, change.length, change.replacement);
  }

  QInputMethodEvent composing(QStringLiteral("ni"), {});
  QApplication::sendEvent(widget, &composing);
  EXPECT_TRUE(delegate.asked.empty());
  QInputMethodEvent committed;
  committed.setCommitString(QStringLiteral("\u4F60"));
  QApplication::sendEvent(widget, &committed);
  expectAsked(10, 0, "\u4F60");

  QMimeData dragged;
  dragged.setText(QStringLiteral("\u2028"));
  dragged.setHtml(QStringLiteral("<b>no</b>"));
  other->setFocus();
  const QImage before = widget->grab().toImage();
  QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction | Qt::MoveAction, &dragged, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(widget, &enter);
  EXPECT_NE(widget->grab().toImage(), before);
  QDropEvent drop(QPointF(1, 1), Qt::CopyAction | Qt::MoveAction, &dragged, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(widget, &drop);
  EXPECT_EQ(drop.dropAction(), Qt::CopyAction);
  expectAsked(0, 0, "\u2028");

  widget->setFocus();
  delegate.answer = [](NSTextView&) { return false; };
  const std::string kept = view.string();
  type("z");
  press(Qt::Key_Backspace);
  press(Qt::Key_Z, Qt::ControlModifier);
  press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(view.string(), kept);
}

TEST_F(TextView, LetsTheDelegateSetTheText) {
  view.setString("local: ");
  delegate.answer = [](NSTextView& asked) {
    asked.setString(asked.string() + "\nreply\nlocal: ");
    return false;
  };
  press(Qt::Key_Return);
  EXPECT_EQ(view.string(), "local: \nreply\nlocal: ");
  EXPECT_EQ(caret(), view.length());
  EXPECT_FALSE(view.isEdited());
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(view.string(), "local: \nreply\nlocal: ");
  // A text set meanwhile wins also over a yes.
  delegate.answer = [](NSTextView& asked) {
    asked.setString("new");
    return true;
  };
  type("x");
  EXPECT_EQ(view.string(), "new");
}

TEST_F(TextView, TellsTheEndOfAnEditWhenTheFocusGoesToAnotherControl) {
  view.setString("a");
  other->setFocus();
  EXPECT_EQ(delegate.ended, 0);
  widget->setFocus();
  type("b");
  EXPECT_TRUE(view.isEdited());
  for (const Qt::FocusReason reason : {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason}) {
    QFocusEvent out(QEvent::FocusOut, reason);
    QApplication::sendEvent(widget, &out);
  }
  EXPECT_EQ(delegate.ended, 0);
  other->setFocus();
  EXPECT_EQ(delegate.ended, 1);
  EXPECT_TRUE(view.isEdited());
  widget->setFocus();
  other->setFocus();
  EXPECT_EQ(delegate.ended, 1);
  widget->setFocus();
  type("c");
  view.setString("d");
  EXPECT_FALSE(view.isEdited());
  other->setFocus();
  EXPECT_EQ(delegate.ended, 1);
}

TEST_F(TextView, PassesOverTheEndsOfItsBlocks) {
  const std::string line(TextStore::longestBlock + 200, 'x');
  view.setString(line);
  for (const auto& [key, step] : {std::pair{Qt::Key_Right, 1}, std::pair{Qt::Key_Left, -1}}) {
    std::size_t at = step > 0 ? 0 : view.length();
    select(at);
    for (std::size_t i = 0; i < line.size(); ++i) {
      QTest::keyClick(widget, key);
      at += std::size_t(step);
      ASSERT_EQ(caret(), at);
    }
  }
  // One word, one paragraph, however many blocks.
  select(0);
  for (int i = 0; i < 20; ++i)
    QTest::keyClick(widget, Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(caret(), view.length());
  for (std::size_t left = line.size(); left > 0; --left) {
    QTest::keyClick(widget, Qt::Key_Backspace);
    ASSERT_EQ(view.length(), left - 1);
  }
  QTest::keyClick(widget, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(view.string(), line);

  // A line end of two is one character.
  view.setString("a\r\nb");
  select(1);
  press(Qt::Key_Right);
  EXPECT_EQ(caret(), 3u);
  press(Qt::Key_Backspace);
  EXPECT_EQ(view.string(), "ab");
}

TEST_F(TextView, MovesByRowsAndKeepsTheColumn) {
  view.setString("first line\nab\nthird line\n" + std::string(300, 'w'));
  select(8);
  press(Qt::Key_Down);
  EXPECT_EQ(caret(), 13u);
  press(Qt::Key_Down);
  EXPECT_NEAR(double(caret()), 22, 1);
  for (const auto& [key, expected] : {std::pair{Qt::Key_Home, 14u}, {Qt::Key_End, 24u}}) {
    press(key);
    EXPECT_EQ(caret(), expected);
  }
  press(Qt::Key_Down);
  press(Qt::Key_Home);
  EXPECT_EQ(caret(), 25u);
  // A wrapped row ends before its last character; the next one begins behind it.
  press(Qt::Key_End);
  const std::size_t rowEnd = caret();
  EXPECT_GT(rowEnd, 25u);
  EXPECT_LT(rowEnd, view.length());
  press(Qt::Key_Right);
  press(Qt::Key_Home);
  EXPECT_EQ(caret(), rowEnd + 1);
  press(Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_EQ(view.selectedRange().location, 25u);
  EXPECT_EQ(view.selectedRange().length, rowEnd + 1 - 25);
  press(Qt::Key_Home, Qt::ControlModifier);
  EXPECT_EQ(caret(), 0u);
  press(Qt::Key_Up);
  EXPECT_EQ(caret(), 0u);
}

TEST_F(TextView, SelectsByMouse) {
  view.setString("one two three");
  QTest::mouseClick(widget, Qt::LeftButton, {}, inTwo());
  EXPECT_EQ(caret(), 6u);
  QTest::mouseDClick(widget, Qt::LeftButton, {}, inTwo());
  EXPECT_EQ(caret(), 4u);
  EXPECT_EQ(view.selectedRange().length, 3u);
  // A third press takes the line; one inside a selection may drag it, and drops it on a click.
  QTest::mousePress(widget, Qt::LeftButton, {}, inTwo());
  EXPECT_EQ(view.selectedRange().length, 13u);
  QTest::mouseRelease(widget, Qt::LeftButton, {}, inTwo());
  QTest::qWait(QApplication::doubleClickInterval() + 50);
  select(0, 13);
  QTest::mousePress(widget, Qt::LeftButton, {}, inTwo());
  EXPECT_EQ(view.selectedRange().length, 13u);
  QTest::mouseRelease(widget, Qt::LeftButton, {}, inTwo());
  EXPECT_EQ(view.selectedRange().length, 0u);
  EXPECT_EQ(caret(), 6u);
}

TEST_F(TextView, StepsToTheLeftThroughTextFromRightToLeft) {
  view.setString("abc\n\u05D0\u05D1\u05D2");
  select(4);
  press(Qt::Key_Left);
  EXPECT_EQ(caret(), 5u);
  press(Qt::Key_Left);
  press(Qt::Key_Right);
  EXPECT_EQ(caret(), 5u);
  select(1);
  press(Qt::Key_Left);
  EXPECT_EQ(caret(), 0u);
}

TEST_F(TextView, ScrollsToItsEndAndBack) {
  std::string lines;
  for (int i = 0; i < 5000; ++i)
    lines += std::string(std::size_t(i % 200), 'l') + "\n";
  view.setString(lines);
  auto* bar = widget->findChild<QScrollBar*>();
  view.scrollRangeToVisible(view.selectedRange());
  EXPECT_EQ(bar->value(), bar->maximum());
  EXPECT_GT(bar->maximum(), 4900);
  bar->setValue(0);
  press(Qt::Key_Home, Qt::ControlModifier);
  int pages = 0;
  for (std::size_t before = 1; caret() != before && pages < 5000; ++pages) {
    before = caret();
    QTest::keyClick(widget, Qt::Key_PageDown);
  }
  EXPECT_EQ(caret(), view.length());
  EXPECT_EQ(bar->value(), bar->maximum());
  // What is appended moves nothing until it is asked for.
  bar->setValue(10);
  view.setString(lines + "more\n");
  EXPECT_EQ(bar->value(), 10);
}

// Real keys and clipboard on texts of many blocks, against a plain string.
TEST_F(TextView, BehavesLikeAPlainStringUnderRandomEdits) {
  std::mt19937 random(11);
  QString model = randomText(random, 3000) + QString(7000, u'j') + randomText(random, 3000);
  view.setString(toUtf8(model));
  std::vector<QString> undone{model};
  for (int step = 0; step < 1500; ++step) {
    const std::size_t at = random() % (view.length() + 1);
    const std::size_t length = random() % 5 == 0 ? random() % 3000 : 0;
    select(at, length);
    const NSRange range = view.selectedRange();
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers, const QString& typed,
                           const QString& expected) {
      QTest::sendKeyEvent(QTest::Click, widget, key, typed, modifiers);
      model.replace(qsizetype(range.location), qsizetype(range.length), expected);
    };
    const QString pasted = randomText(random, random() % 10 == 0 ? 5000 : 1 + random() % 5);
    switch (random() % 5) {
      case 0:
        press(Qt::Key_unknown, {}, QStringLiteral("\u4E2D"), QStringLiteral("\u4E2D"));
        break;
      case 1:
        press(Qt::Key_Return, {}, QStringLiteral("\r"), QStringLiteral("\n"));
        break;
      case 2:
        setClipboard(pasted);
        press(Qt::Key_V, Qt::ControlModifier, {}, pasted);
        break;
      case 3:
        if (range.length == 0) continue;
        press(Qt::Key_Delete, {}, {}, {});
        break;
      default:
        press(Qt::Key_X, Qt::ControlModifier, {}, {});
    }
    ASSERT_EQ(text(), model) << step;
    if (undone.back() != model) undone.push_back(model);
    if (random() % 20 == 0 && undone.size() > 1) {
      QTest::keyClick(widget, Qt::Key_Z, Qt::ControlModifier);
      ASSERT_EQ(text(), undone[undone.size() - 2]) << step;
      if (random() % 2 == 0) {
        QTest::keyClick(widget, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
      } else {
        undone.pop_back();
      }
      model = undone.back();
      ASSERT_EQ(text(), model) << step;
    }
  }
  while (widget->canUndo())
    QTest::keyClick(widget, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(text(), undone.front());
}

}  // namespace tarn::test
