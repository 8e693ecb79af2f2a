#include "wire/request/RedisCommand.h"

namespace tarn {

std::string_view commandName(RedisCommand command) {
  switch (command) {
    case RedisCommand::auth:
      return "AUTH";
    case RedisCommand::config:
      return "config";
    case RedisCommand::scan:
      return "scan";
    case RedisCommand::select:
      return "select";
    case RedisCommand::type:
      return "type";
    case RedisCommand::ttl:
      return "ttl";
    case RedisCommand::get:
      return "get";
    case RedisCommand::del:
      return "del";
    case RedisCommand::set:
      return "set";
    case RedisCommand::expire:
      return "expire";
    case RedisCommand::persist:
      return "persist";
    case RedisCommand::sadd:
      return "sadd";
    case RedisCommand::sscan:
      return "sscan";
    case RedisCommand::lrange:
      return "lrange";
    case RedisCommand::rpush:
      return "rpush";
    case RedisCommand::hscan:
      return "hscan";
    case RedisCommand::hmset:
      return "hmset";
    case RedisCommand::zrange:
      return "zrange";
    case RedisCommand::zadd:
      return "zadd";
    case RedisCommand::info:
      return "info";
    case RedisCommand::raw:
    case RedisCommand::clusterNodes:
      return {};
  }
  return {};
}

}  // namespace tarn
