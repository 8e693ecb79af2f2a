#include "platform/appkit/text/BlockLayout.h"
#include "platform/appkit/text/TextViewWidget.h"
#include "tests/appkit/ExactTexts.h"
#include "tests/appkit/Keys.h"

#include <QClipboard>
#include <QInputMethodEvent>
#include <QScrollBar>
#include <QTest>
#include <QTextLayout>
#include <gtest/gtest.h>

namespace tarn::test {
namespace {

class TextView : public testing::Test {
protected:
  TextView() {
    show(view, QSize(400, 280));
    view.setFocus();
  }

  int rowHeight() const { return BlockLayout::rowHeight(view.font()); }
  QRect area() const { return view.contentsRect().adjusted(4, 4, -4 - bar->sizeHint().width(), -4); }
  std::size_t startOfRow(int row) const { return view.positionAt(area().topLeft() + QPoint(1, row * rowHeight() + 3)); }

  // Where each row starts, as a user finds out who goes down from the top.
  std::vector<std::size_t> rowStarts() {
    std::vector<std::size_t> starts{0};
    view.setSelection(0, 0);
    for (;;) {
      QTest::keyClick(&view, Qt::Key_Down);
      QTest::keyClick(&view, Qt::Key_Home);
      if (view.caret() == starts.back()) return starts;
      starts.push_back(view.caret());
    }
  }
  // The same if the line were laid out whole.
  std::vector<std::size_t> plainRowStarts() const {
    QTextLayout layout(view.text(), view.font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    std::vector<std::size_t> starts;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(area().width());
      starts.push_back(std::size_t(line.textStart()));
    }
    layout.endLayout();
    return starts;
  }
  QString words(std::size_t length) {
    constexpr std::array<QStringView, 5> kinds{u"x", u"iW", u"\u4E2D", u"\U0001F600", u"e\u0301"};
    QString text;
    while (std::size_t(text.size()) < length) {
      const QStringView kind = kinds[random() % kinds.size()];
      text += kind.toString().repeated(qsizetype(1 + random() % (random() % 50 == 0 ? 200 : 12))) + u' ';
    }
    return text;
  }

  TextViewWidget view;
  QScrollBar* bar = view.findChild<QScrollBar*>();
  std::mt19937 random{3};
};

}  // namespace

TEST_F(TextView, BreaksRowsAsIfTheLineWereLaidOutWhole) {
  view.setText(words(7000));
  EXPECT_EQ(rowStarts(), plainRowStarts());
  for (int step = 0; step < 12; ++step) {
    const std::size_t at = random() % view.textLength();
    const std::size_t length = random() % 3 == 0 ? random() % 1500 : 0;
    view.replaceByUser(at, std::min(length, view.textLength() - at), words(random() % 1500));
    ASSERT_EQ(rowStarts(), plainRowStarts()) << step;
  }
  view.resize(300, 280);
  EXPECT_EQ(rowStarts(), plainRowStarts());
  view.setText(view.text() + words(4000));
  EXPECT_EQ(rowStarts(), plainRowStarts());
}

TEST_F(TextView, HitsAndMovesInTheRowsThatArePainted) {
  view.setText(QString(9000, u'x'));
  bar->setValue(0);
  const std::size_t perRow = rowStarts().at(1);
  for (int top = 0; top < bar->maximum(); top += 7) {
    bar->setValue(top);
    for (int row = 0; row < area().height() / rowHeight() - 1; ++row) {
      const std::size_t expected = perRow * std::size_t(bar->value() + row);
      ASSERT_EQ(startOfRow(row), expected);
      ASSERT_EQ(view.positionAt(QPoint(area().right(), area().y() + row * rowHeight() + 3)), expected + perRow - 1);
    }
  }
}

TEST_F(TextView, MovesNothingWhileItScrollsAwayFromAJump) {
  view.setText(QString(300000, u'x'));
  bar->setValue(0);
  bar->setValue(bar->maximum() / 2);
  for (int step = 0; step < 900; ++step) {
    const std::size_t first = startOfRow(0);
    const std::size_t second = startOfRow(1);
    bar->setValue(bar->value() - 1);
    ASSERT_EQ(startOfRow(1), first) << step;
    ASSERT_EQ(startOfRow(2), second) << step;
  }
}

TEST_F(TextView, LaysComposedTextOutWhereTheCaretIs) {
  view.setText(QString(5000, u'x'));
  const std::vector<std::size_t> before = rowStarts();
  view.setSelection(before.at(20), before.at(20));
  keys("Home");
  const auto caret = [&] { return view.inputMethodQuery(Qt::ImCursorRectangle).toRect(); };
  const QRect alone = caret();
  QInputMethodEvent composing(QStringLiteral("nihao"), {});
  QApplication::sendEvent(&view, &composing);
  EXPECT_GT(caret().x(), alone.x());
  QInputMethodEvent cancelled;
  QApplication::sendEvent(&view, &cancelled);
  EXPECT_EQ(caret(), alone);
  EXPECT_EQ(rowStarts(), before);
}

TEST_F(TextView, EndsARowThatWouldNeverBeFull) {
  view.setText(QString(60000, QChar(0x301)) + QStringLiteral("end"));
  EXPECT_FALSE(view.grab().isNull());
  keys("Ctrl+Home Ctrl+End");
  EXPECT_EQ(view.caret(), view.textLength());
}

TEST_F(TextView, WrapsThePlaceholderOfAnEmptyView) {
  const auto secondRow = [this] {
    return view.grab(area().adjusted(4, rowHeight(), 0, -rowHeight())).toImage().convertToFormat(QImage::Format_RGB32);
  };
  const QImage empty = secondRow();
  view.setPlaceholderText(QStringLiteral("Nothing to show."));
  EXPECT_EQ(secondRow(), empty);
  view.setPlaceholderText(QStringLiteral("Nothing to show. ").repeated(8));
  EXPECT_NE(secondRow(), empty);
}

TEST_F(TextView, ScrollsToItsEndAndBack) {
  QString lines;
  for (int i = 0; i < 3000; ++i)
    lines += QString(i % 200, u'l') + u'\n';
  view.setText(lines);
  view.scrollToPosition(view.caret());
  EXPECT_EQ(bar->value(), bar->maximum());
  EXPECT_GT(bar->maximum(), 2900);
  bar->setValue(0);
  keys("Ctrl+Home");
  for (std::size_t before = 1; view.caret() != before;) {
    before = view.caret();
    QTest::keyClick(&view, Qt::Key_PageDown);
  }
  EXPECT_EQ(view.caret(), view.textLength());
  EXPECT_EQ(bar->value(), bar->maximum());
  // What is appended moves nothing until it is asked for.
  bar->setValue(10);
  view.appendUtf8("more\n");
  EXPECT_EQ(bar->value(), 10);
  EXPECT_EQ(view.utf8(std::size_t(lines.size())), "more\n");
}

// Real keys and clipboard on texts of many blocks, against a plain string.
TEST_F(TextView, BehavesLikeAPlainStringUnderRandomEdits) {
  QString model = randomText(random, 3000) + QString(7000, u'j') + randomText(random, 3000);
  view.setText(model);
  std::vector<QString> undone{model};
  for (int step = 0; step < 1200; ++step) {
    const std::size_t at = random() % (view.textLength() + 1);
    view.setSelection(at, at + (random() % 5 == 0 ? random() % 3000 : 0));
    const auto start = qsizetype(view.selectionStart());
    const auto length = qsizetype(view.selectionEnd()) - start;
    const QString pasted = randomText(random, random() % 10 == 0 ? 5000 : 1 + random() % 5);
    QGuiApplication::clipboard()->setText(pasted);
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, QString, QString> edits[] = {
        {Qt::Key_unknown, {}, QStringLiteral("\u4E2D"), QStringLiteral("\u4E2D")},
        {Qt::Key_Return, {}, QStringLiteral("\r"), QStringLiteral("\n")},
        {Qt::Key_V, Qt::ControlModifier, {}, pasted},
        {Qt::Key_X, Qt::ControlModifier, {}, {}},
        {Qt::Key_Delete, {}, {}, {}}};
    const auto& [key, modifiers, typed, expected] = edits[random() % (length > 0 ? 5 : 4)];
    QTest::sendKeyEvent(QTest::Click, &view, key, typed, modifiers);
    model.replace(start, length, expected);
    ASSERT_EQ(view.text(), model) << step;
    if (undone.back() != model) undone.push_back(model);
    if (random() % 20 != 0 || undone.size() < 2) continue;
    QTest::keyClick(&view, Qt::Key_Z, Qt::ControlModifier);
    ASSERT_EQ(view.text(), undone[undone.size() - 2]) << step;
    undone.pop_back();
    model = undone.back();
  }
  while (view.canUndo())
    QTest::keyClick(&view, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(view.text(), undone.front());
}

}  // namespace tarn::test
