#include "platform/appkit/Utf8.h"
#include "platform/appkit/text/TextStore.h"
#include "tests/appkit/ExactTexts.h"

#include <gtest/gtest.h>

#include <random>

namespace tarn::test {

namespace {

bool endsLine(QChar unit) {
  return unit == u'\n' || unit == u'\r' || unit == QChar(0x2028) || unit == QChar(0x2029);
}

// What must hold of the blocks, whatever was done to the text.
void expectSound(const TextStore& store, const QString& text, bool manyLines) {
  ASSERT_EQ(store.length(), std::size_t(text.size()));
  ASSERT_EQ(store.text(0, store.length()), text);
  std::size_t start = 0;
  std::size_t rows = 0;
  TextStore::Block block = store.blockAt(0);
  for (;; block = store.next(block)) {
    ASSERT_EQ(block.start, start);
    ASSERT_LE(block.length, TextStore::longestBlock);
    ASSERT_EQ(store.rowsBefore(block), rows);
    ASSERT_EQ(store.blockAt(block.start).start, block.start);
    for (std::size_t inBlock = 0; inBlock < block.rows; ++inBlock) {
      std::size_t row = rows + inBlock;
      ASSERT_EQ(store.blockAtRow(row).start, block.start);
      ASSERT_EQ(row, inBlock);
    }
    const QString shown = text.mid(qsizetype(block.start), qsizetype(block.length));
    if (!store.hasNext(block)) break;
    ASSERT_GT(block.length, 0u);
    ASSERT_EQ(store.blockAt(block.end() - 1).start, block.start);
    ASSERT_EQ(store.previous(store.next(block)).start, block.start);
    const qsizetype content = shown.size() - qsizetype(block.ending);
    if (manyLines) {
      ASSERT_FALSE(std::any_of(shown.begin(), shown.begin() + content, endsLine));
    } else {
      ASSERT_EQ(block.ending, 0u);
    }
    if (block.ending == 2) {
      ASSERT_TRUE(shown.endsWith(QStringLiteral("\r\n")));
    }
    if (shown.back().isHighSurrogate()) {
      ASSERT_FALSE(text[qsizetype(block.end())].isLowSurrogate());
    }
    if (manyLines && shown.back() == u'\r') {
      ASSERT_NE(text[qsizetype(block.end())], u'\n');
    }
    start = block.end();
    rows += block.rows;
  }
  ASSERT_EQ(block.ending, 0u);
  ASSERT_EQ(block.end(), store.length());
  ASSERT_EQ(store.rows(), rows + block.rows);
}

}  // namespace

TEST(TextStore, HoldsItsBlocksSoundUnderRandomChanges) {
  for (const TextStore::Lines lines : {TextStore::Lines::many, TextStore::Lines::one}) {
    std::mt19937 random(20);
    TextStore store(lines);
    store.setColumns(40);
    QString model;
    for (int step = 0; step < 600; ++step) {
      const std::size_t position = model.isEmpty() ? 0 : random() % std::size_t(model.size() + 1);
      const bool large = random() % 20 == 0;
      const std::size_t length = std::min(random() % (large ? 9000 : 6), std::size_t(model.size()) - position);
      const QString inserted = random() % 3 == 0 ? QString() : randomText(random, random() % (large ? 50000 : 4));
      store.replace(position, length, inserted);
      model.replace(qsizetype(position), qsizetype(length), inserted);
      if (step % 10 == 0 || large) expectSound(store, model, lines == TextStore::Lines::many);
      if (HasFatalFailure()) return;
    }
    expectSound(store, model, lines == TextStore::Lines::many);
  }
}

TEST(TextStore, GivesBackItsUtf8) {
  std::mt19937 random(5);
  for (const QString& text : {QString(), allTreacherousTexts(), randomText(random, 700000)}) {
    const std::string utf8 = toUtf8(text);
    ASSERT_EQ(toQString(utf8), text);
    TextStore store(TextStore::Lines::many);
    store.set(utf8);
    expectSound(store, text, true);
    EXPECT_EQ(store.utf8(0), utf8);
    EXPECT_EQ(store.utf8(1), toUtf8(text.mid(1)));
  }
}

TEST(TextStore, OnlyAddsWhereTheNewTextBeginsWithTheOldOne) {
  TextStore store(TextStore::Lines::many);
  EXPECT_FALSE(store.set("one\r"));
  EXPECT_TRUE(store.set("one\r\ntwo"));
  expectSound(store, QStringLiteral("one\r\ntwo"), true);
  EXPECT_TRUE(store.set("one\r\ntwo"));
  EXPECT_FALSE(store.set("one\r\ntw"));
  EXPECT_FALSE(store.set("One\r\ntwo three"));
  expectSound(store, QStringLiteral("One\r\ntwo three"), true);
}

}  // namespace tarn::test
