#include "platform/appkit/text/TextMovement.h"

#include "platform/appkit/text/TextStore.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace tarn {

namespace {

// How far a step looks: longer than any word or character that a user has to do with.
constexpr std::size_t reach = 1000;

// The text around a position, and a finder over it that stands there.
class Surroundings final {
public:
  Surroundings(const TextStore& store, std::size_t position, QTextBoundaryFinder::BoundaryType type)
      : start_(position - std::min(position, reach)),
        text_(store.text(start_, position - start_ + reach)),
        finder_(type, text_) {
    finder_.setPosition(qsizetype(position - start_));
  }

  QTextBoundaryFinder& finder() { return finder_; }
  QChar at(qsizetype index) const { return index < text_.size() ? text_[index] : QChar(); }
  bool isAtEnd() const { return finder_.position() >= text_.size(); }
  std::size_t position() const { return start_ + std::size_t(std::max<qsizetype>(finder_.position(), 0)); }
  std::size_t start() const { return start_; }
  std::size_t end() const { return start_ + std::size_t(text_.size()); }

private:
  std::size_t start_;
  QString text_;
  QTextBoundaryFinder finder_;
};

}  // namespace

std::size_t nextCharacter(const TextStore& store, std::size_t position) {
  Surroundings near(store, position, QTextBoundaryFinder::Grapheme);
  return near.finder().toNextBoundary() < 0 ? near.end() : near.position();
}

std::size_t previousCharacter(const TextStore& store, std::size_t position) {
  Surroundings near(store, position, QTextBoundaryFinder::Grapheme);
  return near.finder().toPreviousBoundary() < 0 ? near.start() : near.position();
}

std::size_t nextWord(const TextStore& store, std::size_t position) {
  Surroundings near(store, position, QTextBoundaryFinder::Word);
  while (near.finder().toNextBoundary() >= 0) {
    if (near.isAtEnd() || !near.at(near.finder().position()).isSpace()) return near.position();
  }
  return near.end();
}

std::size_t previousWord(const TextStore& store, std::size_t position) {
  Surroundings near(store, position, QTextBoundaryFinder::Word);
  while (near.finder().toPreviousBoundary() >= 0) {
    if (near.position() == near.start() || !near.at(near.finder().position()).isSpace()) return near.position();
  }
  return near.start();
}

WordRange wordAt(const TextStore& store, std::size_t position) {
  Surroundings near(store, position, QTextBoundaryFinder::Word);
  const bool isStart = near.finder().isAtBoundary() && position < near.end();
  if (!isStart) near.finder().toPreviousBoundary();
  const std::size_t start = near.position();
  return {start, near.finder().toNextBoundary() < 0 ? near.end() : near.position()};
}

WordRange lineAt(const TextStore& store, std::size_t position) {
  TextStore::Block first = store.blockAt(position);
  TextStore::Block last = first;
  while (store.hasPrevious(first) && store.previous(first).ending == 0)
    first = store.previous(first);
  while (last.ending == 0 && store.hasNext(last))
    last = store.next(last);
  return {first.start, last.end()};
}

}  // namespace tarn
