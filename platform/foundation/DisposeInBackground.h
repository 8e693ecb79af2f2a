#pragma once

#include <cstddef>
#include <memory>
#include <utility>

namespace tarn {

// Frees the object on another thread. Any thread.
void disposeInBackground(std::shared_ptr<void> garbage);

// Frees what holds this many elements on another thread if they are many: those of a million take longer than an event
// should. Any thread.
template <class Garbage>
void disposeInBackground(Garbage garbage, std::size_t elements) {
  constexpr std::size_t many = 10'000;
  if (elements >= many) disposeInBackground(std::make_shared<Garbage>(std::move(garbage)));
}

}  // namespace tarn
