#include "platform/foundation/Bytes.h"

#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <utility>

namespace tarn {

Bytes::Bytes(std::string_view chars) : Bytes() {
  resize(chars.size());
  if (!chars.empty()) std::memcpy(data(), chars.data(), chars.size());
}

Bytes::Bytes(const Bytes& other) : Bytes(other.view()) {}

Bytes::Bytes(Bytes&& other) noexcept : Bytes() {
  takeFrom(other);
}

Bytes& Bytes::operator=(const Bytes& other) {
  if (this != &other) *this = Bytes(other);
  return *this;
}

Bytes& Bytes::operator=(Bytes&& other) noexcept {
  if (this == &other) return *this;
  if (isOnHeap()) std::free(block().chars);
  takeFrom(other);
  return *this;
}

void Bytes::resize(std::size_t newSize) {
  if (newSize <= inlineCapacity) {
    if (isOnHeap()) {
      const Block old = block();
      std::memcpy(storage_, old.chars, newSize);
      std::free(old.chars);
    }
    tag_ = static_cast<std::uint8_t>(newSize);
    return;
  }
  const bool wasOnHeap = isOnHeap();
  // realloc moves a large block by its page tables, without copying it.
  auto* const chars = static_cast<char*>(std::realloc(wasOnHeap ? block().chars : nullptr, newSize));
  if (chars == nullptr) throw std::bad_alloc();
  if (!wasOnHeap) std::memcpy(chars, storage_, tag_);
  setBlock({chars, newSize});
}

void Bytes::append(std::string_view chars) {
  if (chars.empty()) return;
  const std::size_t oldSize = size();
  const std::less<const char*> before;
  const bool isOwnPart = !before(chars.data(), data()) && before(chars.data(), data() + oldSize);
  const std::size_t offset = isOwnPart ? static_cast<std::size_t>(chars.data() - data()) : 0;
  resize(oldSize + chars.size());
  std::memmove(data() + oldSize, isOwnPart ? data() + offset : chars.data(), chars.size());
}

void Bytes::setBlock(Block block) noexcept {
  std::memcpy(storage_, &block, sizeof block);
  tag_ = heapTag;
}

void Bytes::takeFrom(Bytes& other) noexcept {
  std::memcpy(storage_, other.storage_, sizeof storage_);
  tag_ = std::exchange(other.tag_, std::uint8_t{0});
}

Bytes operator""_bytes(const char* chars, std::size_t size) {
  return Bytes(std::string_view(chars, size));
}

}  // namespace tarn
