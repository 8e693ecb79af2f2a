#pragma once

#include <cstddef>
#include <map>
#include <optional>

namespace tarn {

// Where the first row of each block of a long line starts: a block's last row is rarely full when the block ends, and
// goes on in the next one. What is known holds for one width and font. Positions are the text's, and a block is known
// by its start.
class RowStarts final {
public:
  struct Start {
    // Of the block's first row, at or before the block's own start.
    std::size_t position = 0;
    // Found from the line's start. Otherwise from a guess somewhere on the way.
    bool isExact = false;
    // The first row of the block before, if that block's layout left the row unfinished. Otherwise the rows before end
    // here whether they are full or not.
    std::optional<std::size_t> carriedFrom = std::nullopt;
  };

  std::optional<Start> start(std::size_t block) const;
  // The same for the block behind one whose first row is `before`. A guess that isn't in sight gives way to what is
  // exact; in sight it stays, so that nothing moves under the reader.
  std::optional<Start> next(std::size_t block, const Start& before);
  void set(std::size_t block, const Start& start) { starts_[block] = start; }
  // The block's first row is taken to start with it.
  void guess(std::size_t block) { starts_[block] = {block, false, {}}; }

  // The text changed from `position` on.
  void forgetFrom(std::size_t position) { starts_.erase(starts_.lower_bound(position), starts_.end()); }
  void clear() { starts_.clear(); }

  // The first and the last block in sight.
  void setShown(std::size_t first, std::size_t last);

private:
  std::map<std::size_t, Start> starts_;
  std::size_t firstShown_ = 0;
  std::size_t lastShown_ = 0;
};

}  // namespace tarn
