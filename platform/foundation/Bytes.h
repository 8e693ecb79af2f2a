#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace tarn {

// A byte string: a key, a value, a member, a request. Never text; only the codec turns one into the other, so neither
// direction converts by accident. Up to 23 bytes lie in the object itself (24 bytes in all), longer ones in one block
// of exactly their size. A value type; any thread may use its own object.
class Bytes final {
public:
  static constexpr std::size_t inlineCapacity = 23;

  Bytes() noexcept : tag_(0) {}
  explicit Bytes(std::string_view chars);
  Bytes(const Bytes& other);
  Bytes(Bytes&& other) noexcept;
  Bytes& operator=(const Bytes& other);
  Bytes& operator=(Bytes&& other) noexcept;
  ~Bytes() {
    if (isOnHeap()) std::free(block().chars);
  }

  // In the header, since a million-row list asks them several times a row.
  const char* data() const noexcept { return isOnHeap() ? block().chars : storage_; }
  char* data() noexcept { return isOnHeap() ? block().chars : storage_; }
  std::size_t size() const noexcept { return isOnHeap() ? block().size : tag_; }
  bool empty() const noexcept { return size() == 0; }
  std::string_view view() const noexcept { return {data(), size()}; }

  // Keeps the first bytes; new ones are left uninitialised, for a reader that is about to fill them.
  void resize(std::size_t size);
  void append(std::string_view chars);

  friend bool operator==(const Bytes& a, const Bytes& b) noexcept { return a.view() == b.view(); }
  friend std::strong_ordering operator<=>(const Bytes& a, const Bytes& b) noexcept { return a.view() <=> b.view(); }

private:
  // The last byte is the tag: up to inlineCapacity it is the size of the bytes in place, heapTag says that the first
  // sixteen bytes hold the block and its size.
  static constexpr std::uint8_t heapTag = 0xFF;

  struct Block {
    char* chars;
    std::size_t size;
  };

  bool isOnHeap() const noexcept { return tag_ == heapTag; }
  Block block() const noexcept {
    Block block;
    std::memcpy(&block, storage_, sizeof block);
    return block;
  }
  void setBlock(Block block) noexcept;
  void takeFrom(Bytes& other) noexcept;

  alignas(8) char storage_[inlineCapacity];
  std::uint8_t tag_;
};

Bytes operator""_bytes(const char* chars, std::size_t size);

}  // namespace tarn
