#include "platform/appkit/text/BlockLayout.h"
#include "platform/appkit/text/TextViewWidget.h"
#include "tests/support/widgets/Hand.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QScrollBar>
#include <QTest>
#include <QTextLayout>
#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace tarn::test {

namespace {

class TextWrapping : public testing::Test {
protected:
  TextWrapping() {
    view.setParent(&window);
    show(window, QSize(420, 300));
    view.resize(400, 280);
    view.setFocus();
    bar = view.findChild<QScrollBar*>();
  }

  int rowHeight() const { return BlockLayout::rowHeight(view.font()); }
  QRect area() const { return view.contentsRect().adjusted(4, 4, -4 - bar->sizeHint().width(), -4); }
  int rowsInSight() const { return area().height() / rowHeight(); }

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
    QString text;
    while (std::size_t(text.size()) < length) {
      const QString& kind = kinds[random() % kinds.size()];
      for (std::size_t i = 1 + random() % (random() % 50 == 0 ? 200 : 12); i > 0; --i)
        text += kind;
      text += u' ';
    }
    return text;
  }

  QWidget window;
  TextViewWidget view;
  QScrollBar* bar = nullptr;
  std::mt19937 random{3};
  std::vector<QString> kinds{QStringLiteral("x"), QStringLiteral("iW"), QStringLiteral("\u4E2D"),
                             QStringLiteral("\U0001F600"), QStringLiteral("e\u0301")};
};

}  // namespace

TEST_F(TextWrapping, BreaksRowsAsIfTheLineWereLaidOutWhole) {
  view.setText(words(12000));
  EXPECT_EQ(rowStarts(), plainRowStarts());
  for (int step = 0; step < 12; ++step) {
    const std::size_t at = random() % view.textLength();
    const std::size_t length = random() % 3 == 0 ? random() % 1500 : 0;
    view.replaceByUser(at, std::min(length, view.textLength() - at), words(random() % 1500));
    ASSERT_EQ(rowStarts(), plainRowStarts()) << step;
  }
  view.resize(300, 280);
  EXPECT_EQ(rowStarts(), plainRowStarts());
  const QString longer = view.text() + words(4000);
  view.setText(longer);
  EXPECT_EQ(rowStarts(), plainRowStarts());
}

TEST_F(TextWrapping, HitsAndMovesInTheRowsThatArePainted) {
  view.setText(QString(9000, u'x'));
  bar->setValue(0);
  const std::size_t perRow = rowStarts().at(1);
  for (int top = 0; top < bar->maximum(); top += 7) {
    bar->setValue(top);
    for (int row = 0; row < rowsInSight() - 1; ++row) {
      const QPoint start(area().x() + 1, area().y() + row * rowHeight() + 3);
      const std::size_t expected = perRow * std::size_t(bar->value() + row);
      ASSERT_EQ(view.positionAt(start), expected);
      ASSERT_EQ(view.positionAt(QPoint(area().right(), start.y())), expected + perRow - 1);
    }
  }
}

TEST_F(TextWrapping, MovesNothingWhileItScrollsAwayFromAJump) {
  view.setText(QString(300000, u'x'));
  bar->setValue(0);
  bar->setValue(bar->maximum() / 2);
  const auto startOfRow = [&](int row) {
    return view.positionAt(QPoint(area().x() + 1, area().y() + row * rowHeight() + 3));
  };
  for (int step = 0; step < 900; ++step) {
    const std::size_t first = startOfRow(0);
    const std::size_t second = startOfRow(1);
    bar->setValue(bar->value() - 1);
    ASSERT_EQ(startOfRow(1), first) << step;
    ASSERT_EQ(startOfRow(2), second) << step;
  }
}

TEST_F(TextWrapping, LaysComposedTextOutWhereTheCaretIs) {
  view.setText(QString(5000, u'x'));
  const std::vector<std::size_t> before = rowStarts();
  view.setSelection(before.at(20), before.at(20));
  press(Qt::Key_Home);
  const QRect caret = view.inputMethodQuery(Qt::ImCursorRectangle).toRect();
  QInputMethodEvent composing(QStringLiteral("nihao"), {});
  QApplication::sendEvent(&view, &composing);
  EXPECT_GT(view.inputMethodQuery(Qt::ImCursorRectangle).toRect().x(), caret.x());
  QInputMethodEvent cancelled;
  QApplication::sendEvent(&view, &cancelled);
  EXPECT_EQ(view.inputMethodQuery(Qt::ImCursorRectangle).toRect(), caret);
  EXPECT_EQ(rowStarts(), before);
}

TEST_F(TextWrapping, EndsARowThatWouldNeverBeFull) {
  view.setText(QString(60000, QChar(0x301)) + QStringLiteral("end"));
  EXPECT_FALSE(view.grab().isNull());
  view.setSelection(0, 0);
  press(Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(view.caret(), view.textLength());
}

TEST_F(TextWrapping, WrapsThePlaceholderOfAnEmptyView) {
  const auto lastRowDrawn = [this] {
    const QImage image = view.grab(area()).toImage();
    int last = -1;
    for (int y = 0; y < image.height(); ++y) {
      // Beside the caret.
      for (int x = 4; x < image.width(); ++x) {
        if (image.pixel(x, y) != image.pixel(image.width() - 1, image.height() - 1)) last = y / rowHeight();
      }
    }
    return last;
  };
  view.setPlaceholderText(QStringLiteral("Nothing to show."));
  EXPECT_EQ(lastRowDrawn(), 0);
  view.setPlaceholderText(QStringLiteral("Nothing to show. ").repeated(8));
  EXPECT_GT(lastRowDrawn(), 0);
}

}  // namespace tarn::test
