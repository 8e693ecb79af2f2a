#include "wire/request/RedisCommand.h"

#include <cstddef>
#include <iterator>

namespace tarn {

namespace {

// In the order of RedisCommand.
constexpr std::string_view commandNames[] = {
    "AUTH",  "config", "scan",  "select", "type",  "ttl",    "get",  "del",   "set",  "expire", "persist", "sadd",
    "sscan", "lrange", "rpush", "hscan",  "hmset", "zrange", "zadd", "multi", "exec", "",       "info",    "",
};
constexpr std::size_t indexOf(RedisCommand command) {
  return static_cast<std::size_t>(command);
}
static_assert(std::size(commandNames) == indexOf(RedisCommand::clusterNodes) + 1);
static_assert(commandNames[indexOf(RedisCommand::info)] == "info");

}  // namespace

std::string_view commandName(RedisCommand command) {
  return commandNames[indexOf(command)];
}

}  // namespace tarn
