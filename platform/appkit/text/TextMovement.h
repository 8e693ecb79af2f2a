#pragma once

#include <cstddef>

namespace tarn {

class TextStore;

// Where a step from `position` leads; up to the ends of the text. No step sees where a block ends.
std::size_t nextCharacter(const TextStore& store, std::size_t position);
std::size_t previousCharacter(const TextStore& store, std::size_t position);
// To the start of the next word, or of this one or the one before.
std::size_t nextWord(const TextStore& store, std::size_t position);
std::size_t previousWord(const TextStore& store, std::size_t position);

// The word, or the run of other characters, around `position`.
struct WordRange {
  std::size_t start = 0;
  std::size_t end = 0;
};
WordRange wordAt(const TextStore& store, std::size_t position);

// The whole line around `position`, with what ends it.
WordRange lineAt(const TextStore& store, std::size_t position);

}  // namespace tarn
