#pragma once

#include <QString>

#include <cstddef>
#include <optional>
#include <vector>

namespace tarn {

// One change of a text: `removed` at `position` gave way to `inserted`.
struct TextChange {
  std::size_t position = 0;
  QString removed;
  QString inserted;

  TextChange inverse() const { return {position, inserted, removed}; }
};

// What undo and redo go back and forth over. Letters typed one after the other, and deletes in a row, are one step.
class TextHistory final {
public:
  void add(TextChange change);
  // The next change joins no earlier one: the caret was moved, or the focus.
  void closeStep() { open_ = false; }
  void clear();

  bool canUndo() const { return done_ > 0; }
  bool canRedo() const { return done_ < changes_.size(); }
  // What undoing or redoing changes; the step is taken when `undone` or `redone` says so.
  TextChange undoing() const { return changes_[done_ - 1].inverse(); }
  TextChange redoing() const { return changes_[done_]; }
  void undone();
  void redone();

private:
  bool join(const TextChange& change);

  std::vector<TextChange> changes_;
  std::size_t done_ = 0;
  bool open_ = false;
};

}  // namespace tarn
