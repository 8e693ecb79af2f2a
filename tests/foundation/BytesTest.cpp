#include "platform/foundation/Bytes.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace tarn {
namespace {

static_assert(sizeof(Bytes) == 24);
static_assert(std::is_nothrow_move_constructible_v<Bytes>);

TEST(Bytes, KeepWhatTheyHoldAcrossCopiesAndMoves) {
  const std::string texts[] = {"", std::string("a\0b\xFF", 4), std::string(Bytes::inlineCapacity, 'i'),
                               std::string(Bytes::inlineCapacity + 1, 'h'), std::string(1 << 20, 'x')};
  for (const std::string& from : texts) {
    for (const std::string& to : texts) {
      Bytes source(from);
      EXPECT_EQ(source.empty(), from.empty());
      Bytes copy(to);
      copy = source;
      EXPECT_EQ(copy.view(), from);
      Bytes moved(to);
      moved = std::move(source);
      Bytes& same = moved;
      moved = same;
      moved = std::move(same);
      EXPECT_EQ(moved.view(), from);
      source = Bytes(to);
      EXPECT_EQ(source.view(), to);
    }
  }
  EXPECT_EQ("a\0b"_bytes.size(), 3U);
}

TEST(Bytes, KeepTheirBeginningWhenResizedAndAppendAlsoAPartOfThemselves) {
  Bytes bytes("beginning");
  for (const std::size_t size : {24U, 1000U, 100000U, 30U, 23U, 9U}) {
    bytes.resize(size);
    EXPECT_EQ(bytes.size(), size);
    EXPECT_EQ(bytes.view().substr(0, 9), "beginning");
  }
  bytes.append(bytes.view());
  bytes.append(bytes.view());
  bytes.append(bytes.view().substr(32));
  EXPECT_EQ(bytes.view(), "beginningbeginningbeginningbeginningning");
}

TEST(Bytes, CompareAsUnsignedBytes) {
  EXPECT_NE("b"_bytes, "a"_bytes);
  EXPECT_LT("a"_bytes, "ab"_bytes);
  EXPECT_LT("z"_bytes, "\xFF"_bytes);
}

}  // namespace
}  // namespace tarn
