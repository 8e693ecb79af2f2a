#pragma once

#include <memory>

namespace tarn {

// The process's one T, made at the first call and never destroyed: threads that still run while the process exits may
// go on using it.
template <typename T>
T& immortal() {
  static T& object = *std::make_unique<T>().release();
  return object;
}

}  // namespace tarn
