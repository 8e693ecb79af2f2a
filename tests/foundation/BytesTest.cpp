#include "platform/foundation/Bytes.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace tarn {
namespace {

static_assert(sizeof(Bytes) == 24);
static_assert(std::is_nothrow_move_constructible_v<Bytes>);

const std::string inlineText(Bytes::inlineCapacity, 'i');
const std::string heapText(Bytes::inlineCapacity + 1, 'h');
const std::string hugeText(1 << 20, 'x');

TEST(Bytes, HoldAnyBytesOfAnySize) {
  for (const std::string& text : {std::string(), std::string("a\0b\xFF", 4), inlineText, heapText, hugeText}) {
    const Bytes bytes(text);
    EXPECT_EQ(bytes.view(), text);
    EXPECT_EQ(bytes.empty(), text.empty());
  }
  EXPECT_EQ("a\0b"_bytes.size(), 3U);
}

TEST(Bytes, KeepWhatTheyHoldAcrossCopiesAndMoves) {
  const std::vector<std::string> texts = {"", inlineText, heapText};
  for (const std::string& from : texts) {
    for (const std::string& to : texts) {
      Bytes source(from);
      Bytes copy(to);
      copy = source;
      EXPECT_EQ(copy.view(), from);
      Bytes moved(to);
      moved = std::move(source);
      EXPECT_EQ(moved.view(), from);
      Bytes& same = moved;
      moved = same;
      moved = std::move(same);
      EXPECT_EQ(moved.view(), from);
      source = Bytes(to);
      EXPECT_EQ(source.view(), to);
    }
  }
}

TEST(Bytes, KeepTheirBeginningWhenResized) {
  Bytes bytes("beginning");
  for (const std::size_t size : {24U, 1000U, 100000U, 30U, 23U, 9U}) {
    bytes.resize(size);
    EXPECT_EQ(bytes.size(), size);
    EXPECT_EQ(bytes.view().substr(0, 9), "beginning");
  }
}

TEST(Bytes, AppendAlsoAPartOfThemselves) {
  Bytes bytes("0123456789");
  bytes.append(bytes.view());
  bytes.append(bytes.view());
  bytes.append(bytes.view().substr(35));
  EXPECT_EQ(bytes.view(), "012345678901234567890123456789012345678956789");
}

TEST(Bytes, CompareAsUnsignedBytes) {
  EXPECT_NE(Bytes(heapText), Bytes(inlineText));
  EXPECT_LT("a"_bytes, "ab"_bytes);
  EXPECT_LT("z"_bytes, "\xFF"_bytes);
}

}  // namespace
}  // namespace tarn
