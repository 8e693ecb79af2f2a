#include "platform/appkit/text/TextHistory.h"

namespace tarn {

namespace {

// What typing one key or pressing Delete once changes; a paste of more is a step of its own.
constexpr qsizetype longestKeystroke = 4;

}  // namespace

void TextHistory::add(TextChange change) {
  changes_.resize(done_);
  if (open_ && join(change)) return;
  open_ = change.inserted.size() <= longestKeystroke && change.removed.size() <= longestKeystroke &&
          (change.inserted.isEmpty() || change.removed.isEmpty());
  changes_.push_back(std::move(change));
  ++done_;
}

bool TextHistory::join(const TextChange& change) {
  if (changes_.empty() || change.inserted.size() > longestKeystroke || change.removed.size() > longestKeystroke) {
    return false;
  }
  TextChange& last = changes_.back();
  if (change.removed.isEmpty() && last.removed.isEmpty() &&
      change.position == last.position + std::size_t(last.inserted.size())) {
    last.inserted += change.inserted;
    // A line typed is a step of its own.
    open_ = !change.inserted.contains(u'\n');
    return true;
  }
  if (!change.inserted.isEmpty() || !last.inserted.isEmpty()) return false;
  if (change.position + std::size_t(change.removed.size()) == last.position) {
    last.removed.prepend(change.removed);
    last.position = change.position;
    return true;
  }
  if (change.position == last.position) {
    last.removed += change.removed;
    return true;
  }
  return false;
}

void TextHistory::clear() {
  changes_.clear();
  done_ = 0;
  open_ = false;
}

void TextHistory::undone() {
  --done_;
  open_ = false;
}

void TextHistory::redone() {
  ++done_;
  open_ = false;
}

}  // namespace tarn
