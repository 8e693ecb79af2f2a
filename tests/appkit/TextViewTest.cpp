#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/TextFieldWidget.h"
#include "platform/appkit/text/TextViewWidget.h"
#include "tests/appkit/Steps.h"

#include <QClipboard>
#include <QTextBoundaryFinder>
#include <QTextLayout>

#include <array>
#include <random>

namespace tarn::test {
namespace {

// About so many code units of words, line ends and texts that toolkits like to change.
QString randomText(std::mt19937& random, std::size_t length) {
  static const QStringList pieces = treacherousTexts.split(QStringLiteral("ok"), Qt::SkipEmptyParts);
  QString text;
  while (std::size_t(text.size()) < length) {
    const auto kind = random() % 8;
    if (kind == 0) text += pieces[qsizetype(random() % std::size_t(pieces.size()))];
    if (kind == 1) text += u'\n';
    if (kind == 2) text += QString(qsizetype(random() % 300), QChar(char16_t(u'a' + random() % 26)));
    if (kind > 2) text += QStringLiteral("word ");
  }
  return text;
}

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
      const QString kind = kinds[random() % kinds.size()].toString();
      text += kind.repeated(qsizetype(1 + random() % (random() % 50 == 0 ? 200 : 12))) + u' ';
    }
    return text;
  }

  TextViewWidget view;
  QScrollBar* bar = view.findChild<QScrollBar*>();
  std::mt19937 random{3};
};

// Knows the store of any input.
struct Storing : TextInputWidget {
  static const TextStore& storeOf(const TextInputWidget& input) {
    constexpr const TextStore& (TextInputWidget::*store)() const = &Storing::store;
    return (input.*store)();
  }
};

// What must hold of the blocks, whatever was done to the text.
void expectSound(const TextStore& store, const QString& text, bool manyLines = true) {
  const auto endsLine = [](QChar unit) { return QStringView(u"\n\r\u2028\u2029").contains(unit); };
  ASSERT_EQ(store.text(0, store.length()), text);
  std::size_t start = 0;
  std::size_t rows = 0;
  for (TextStore::Block block = store.blockAt(0);; block = store.next(block)) {
    std::size_t row = rows + block.rows - 1;
    ASSERT_TRUE(block.start == start && block.length <= TextStore::longestBlock && store.rowsBefore(block) == rows);
    ASSERT_TRUE(store.blockAtRow(row).start == start && row == block.rows - 1);
    const QString line = text.mid(qsizetype(start), qsizetype(block.length));
    const auto ending = line.end() - qsizetype(block.ending);
    ASSERT_TRUE(!manyLines || std::none_of(line.begin(), ending, endsLine));
    ASSERT_TRUE(block.ending == 0 || (manyLines && endsLine(*ending)));
    start = block.end();
    rows += block.rows;
    if (!store.hasNext(block)) break;
    ASSERT_TRUE(block.length > 0 && store.blockAt(start - 1).start == block.start);
    ASSERT_EQ(store.previous(store.next(block)).start, block.start);
    const QString around = text.mid(qsizetype(start) - 1, 2);
    ASSERT_FALSE(around[0].isHighSurrogate() && around[1].isLowSurrogate());
    ASSERT_FALSE(manyLines && around == QStringLiteral("\r\n"));
  }
  ASSERT_TRUE(store.lastBlock().ending == 0 && start == store.length() && store.rows() == rows);
}

}  // namespace

TEST_F(TextView, BreaksRowsAsIfTheLineWereLaidOutWhole) {
  view.setText(words(7000));
  for (int step = 0; step < 12; ++step) {
    ASSERT_EQ(rowStarts(), plainRowStarts()) << step;
    const std::size_t at = random() % view.textLength();
    const std::size_t length = random() % 3 == 0 ? random() % 1500 : 0;
    view.replaceByUser(at, length, words(random() % 1500));
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
  // Nothing moves while it scrolls away from a jump.
  view.setText(QString(300000, u'x'));
  bar->setValue(bar->maximum() / 2);
  for (int step = 0; step < 900; ++step) {
    const std::size_t first = startOfRow(0);
    bar->setValue(bar->value() - 1);
    ASSERT_EQ(startOfRow(1), first) << step;
  }
}

TEST_F(TextView, ScrollsToItsEndAndBackAndShowsARowThatWouldNeverBeFull) {
  for (int i = 0; i < 3000; ++i)
    view.appendUtf8(std::string(std::size_t(i % 200), 'l') + "\n");
  const std::size_t length = view.textLength();
  view.scrollToPosition(length);
  EXPECT_TRUE(bar->value() == bar->maximum() && bar->maximum() > 2900);
  keys("Ctrl+Home");
  EXPECT_EQ(bar->value(), 0);
  for (std::size_t before = 1; view.caret() != before; QTest::keyClick(&view, Qt::Key_PageDown))
    before = view.caret();
  EXPECT_TRUE(view.caret() == length && bar->value() == bar->maximum());
  // What is appended moves nothing until it is asked for.
  bar->setValue(10);
  view.appendUtf8("more\n");
  EXPECT_EQ(bar->value(), 10);
  view.setText(QString(60000, QChar(0x301)) + QStringLiteral("end"));
  EXPECT_FALSE(view.grab().isNull());
  keys("Ctrl+Home Ctrl+End");
  EXPECT_EQ(view.caret(), view.textLength());
}

// Real keys and clipboard on texts of many blocks, against a plain string.
TEST_F(TextView, BehavesLikeAPlainStringUnderRandomEditsAsAFieldDoes) {
  TextFieldWidget field;
  for (TextInputWidget* input : std::initializer_list<TextInputWidget*>{&view, &field}) {
    QString model = randomText(random, 3000) + QString(7000, u'j') + randomText(random, 3000);
    input->setText(model);
    std::vector<QString> undone{model};
    for (int step = 0; step < 800; ++step) {
      const std::size_t at = random() % std::size_t(model.size() + 1);
      QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, model);
      characters.setPosition(qsizetype(at));
      // In text from right to left the arrows go the other way.
      const TextStore::Block block = Storing::storeOf(*input).blockAt(at);
      const bool isMirrored = input->text(block.start, block.length).isRightToLeft();
      const qsizetype next =
          (step % 2 == 0) == isMirrored ? characters.toNextBoundary() : characters.toPreviousBoundary();
      input->setSelection(at, at);
      QTest::keyClick(input, step % 2 ? Qt::Key_Right : Qt::Key_Left);
      ASSERT_EQ(input->caret(), next < 0 ? at : std::size_t(next)) << step;

      input->setSelection(at, at + (random() % 5 == 0 ? random() % 9000 : 0));
      const auto length = qsizetype(input->selectionEnd() - at);
      const QString pasted = randomText(random, random() % 10 == 0 ? 5000 : 1 + random() % 5);
      QGuiApplication::clipboard()->setText(pasted);
      const auto edit = random() % (length > 0 ? 3 : 2);
      QTest::keySequence(input, std::array{QKeySequence::Paste, QKeySequence::Cut, QKeySequence::Delete}[edit]);
      model.replace(qsizetype(at), length, edit == 0 ? pasted : QString());
      ASSERT_EQ(input->text(), model) << step;
      if (undone.back() != model) undone.push_back(model);
      if (step % 10 == 0) expectSound(Storing::storeOf(*input), model, input == &view);
      if (HasFatalFailure()) return;
      if (random() % 20 != 0 || undone.size() < 2) continue;
      QTest::keySequence(input, QKeySequence::Undo);
      undone.pop_back();
      model = undone.back();
      ASSERT_EQ(input->text(), model) << step;
    }
    while (input->canUndo())
      input->undo();
    EXPECT_EQ(input->text(), undone.front());
  }
}

TEST(TextStore, GivesBackItsUtf8AndOnlyAddsWhereTheNewTextBeginsWithTheOldOne) {
  std::mt19937 random(5);
  const std::string large = toUtf8(randomText(random, 700000) + treacherousTexts);
  TextStore store(TextStore::Lines::many);
  const std::pair<std::string, bool> sets[] = {
      {"one\r", false}, {"one\r\ntwo", true}, {"one\r\ntwo", true}, {"one\r\ntw", false}, {"One\r\ntwo three", false},
      {large, false},   {large + "x", true},  {"", false}};
  for (const auto& [utf8, adds] : sets) {
    EXPECT_EQ(store.set(utf8), adds);
    expectSound(store, toQString(utf8));
    EXPECT_EQ(store.utf8(0), utf8);
    EXPECT_EQ(store.utf8(1), toUtf8(toQString(utf8).mid(1)));
  }
}

}  // namespace tarn::test
