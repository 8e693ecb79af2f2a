#pragma once

#include <cstdlib>
#include <string_view>

namespace tarn {

// What each fuzz program does with one input. A fault ends the process.
void fuzz(std::string_view input);

// In every build, unlike assert.
inline void require(bool held) {
  if (!held) std::abort();
}

}  // namespace tarn
