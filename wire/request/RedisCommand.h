#pragma once

#include <cstdint>
#include <string_view>

namespace tarn {

// The commands that the client issues by itself; commandNames has the name of each in this order.
enum class RedisCommand : std::uint8_t {
  auth,
  config,
  scan,
  select,
  type,
  ttl,
  get,
  del,
  set,
  expire,
  persist,
  sadd,
  sscan,
  lrange,
  rpush,
  hscan,
  hmset,
  zrange,
  zadd,
  multi,
  exec,
  raw,  // the arguments are the whole command
  info,
  clusterNodes,  // "cluster" "nodes", whatever the arguments
};

// The name as it is sent; empty for raw and clusterNodes.
std::string_view commandName(RedisCommand command);

}  // namespace tarn
