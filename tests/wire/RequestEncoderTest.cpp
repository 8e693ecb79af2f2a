#include "wire/command/RequestEncoder.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace tarn::test {
namespace {

Bytes encoded(RedisCommand command, std::vector<Bytes> args) {
  std::vector<std::string_view> words;
  for (const Bytes& arg : args)
    words.push_back(arg.view());
  return encodeRequest(command, words);
}

TEST(RequestEncoder, SendsTheMultiBulkForm) {
  EXPECT_EQ(encoded(RedisCommand::get, {"k"_bytes}), "*2\r\n$3\r\nget\r\n$1\r\nk\r\n"_bytes);
  EXPECT_EQ(encoded(RedisCommand::get, {}), "*1\r\n$3\r\nget\r\n"_bytes);
  EXPECT_EQ(encoded(RedisCommand::auth, {Bytes()}), "*2\r\n$4\r\nAUTH\r\n$0\r\n\r\n"_bytes);
  EXPECT_EQ(encoded(RedisCommand::set, {"\r\n\0"_bytes, "\xFF"_bytes}),
            "*3\r\n$3\r\nset\r\n$3\r\n\r\n\0\r\n$1\r\n\xFF\r\n"_bytes);
  // A whole command of the caller's, and one that takes no arguments.
  EXPECT_EQ(encoded(RedisCommand::raw, {"PING"_bytes}), "*1\r\n$4\r\nPING\r\n"_bytes);
  EXPECT_EQ(encoded(RedisCommand::clusterNodes, {"x"_bytes}), "*2\r\n$7\r\ncluster\r\n$5\r\nnodes\r\n"_bytes);
}

}  // namespace
}  // namespace tarn::test
