// The commands by which the workbench reads and writes keys: each builds its arguments, and shows its own failure.

#include <algorithm>

#include "platform/foundation/Log.h"
#include "platform/foundation/NSLocalizedString.h"
#include "wire/NodeAddress.h"
#include "wire/ServerItem.h"

namespace tarn {

namespace {

Bytes decimal(std::int64_t number) {
  return Bytes(std::to_string(number));
}

std::vector<Bytes> keyAndItems(const Bytes& key, const std::vector<Bytes>& items) {
  std::vector<Bytes> args;
  args.reserve(items.size() + 1);
  args.push_back(key);
  args.insert(args.end(), items.begin(), items.end());
  return args;
}

// One of each in turn, up to the end of the shorter.
template <typename First>
std::vector<Bytes> keyAndPairs(const Bytes& key, const std::vector<First>& firsts, const std::vector<Bytes>& seconds) {
  const std::size_t count = std::min(firsts.size(), seconds.size());
  std::vector<Bytes> args;
  args.reserve(2 * count + 1);
  args.push_back(key);
  for (std::size_t i = 0; i < count; ++i) {
    args.emplace_back(firsts[i]);
    args.push_back(seconds[i]);
  }
  return args;
}

}  // namespace

ReplyResult ServerItem::executeAndShowFailure(RedisCommand command, Arguments args) {
  ReplyResult result = exchange(command, args, std::nullopt);
  if (!result.ok) showServerError(result.message);
  return result;
}

ReplyResult ServerItem::executeAndShowFailure(RedisCommand command, std::initializer_list<Bytes> args) {
  return executeAndShowFailure(command, Arguments(args.begin(), args.size()));
}

std::vector<Bytes> ServerItem::listOf(RedisCommand command, std::initializer_list<Bytes> args) {
  ReplyResult result = executeAndShowFailure(command, args);
  return result.ok && result.list ? *std::move(result.list) : std::vector<Bytes>();
}

bool ServerItem::writeThenExpire(RedisCommand command, Arguments args, std::int64_t ttl) {
  if (!executeAndShowFailure(command, args).ok) return false;
  return ttl < 0 || executeAndShowFailure(RedisCommand::expire, {args.front(), decimal(ttl)}).ok;
}

bool ServerItem::selectDb(int index) {
  return executeAndShowFailure(RedisCommand::select, {decimal(index)}).ok;
}

std::pair<bool, std::string> ServerItem::keyType(const Bytes& key) {
  ReplyResult result = executeAndShowFailure(RedisCommand::type, Arguments(&key, 1));
  if (!result.ok) return {false, {}};
  if (auto* const word = result.value ? std::get_if<std::string>(&*result.value) : nullptr) {
    return {true, std::move(*word)};
  }
  showServerError(localizedString("Server reply: Error"));
  return {false, {}};
}

std::pair<bool, std::optional<std::string>> ServerItem::keyTtl(const Bytes& key) {
  const ReplyResult result = executeAndShowFailure(RedisCommand::ttl, Arguments(&key, 1));
  if (!result.ok) return {false, std::nullopt};
  const auto* const seconds = result.value ? std::get_if<std::int64_t>(&*result.value) : nullptr;
  return {true, seconds != nullptr ? std::optional(std::to_string(*seconds)) : std::nullopt};
}

std::pair<bool, Bytes> ServerItem::getValue(const Bytes& key) {
  ReplyResult result = executeAndShowFailure(RedisCommand::get, Arguments(&key, 1));
  if (!result.ok) return {false, {}};
  logLine("get success");
  auto* const value = result.value ? std::get_if<Bytes>(&*result.value) : nullptr;
  return {true, value != nullptr ? std::move(*value) : Bytes()};
}

std::vector<Bytes> ServerItem::lrangeAll(const Bytes& key) {
  return listOf(RedisCommand::lrange, {key, "0"_bytes, "-1"_bytes});
}

std::vector<Bytes> ServerItem::zrangeAll(const Bytes& key) {
  return listOf(RedisCommand::zrange, {key, "0"_bytes, "-1"_bytes, "withscores"_bytes});
}

bool ServerItem::deleteKey(const Bytes& key) {
  return executeAndShowFailure(RedisCommand::del, Arguments(&key, 1)).ok;
}

bool ServerItem::setValue(const Bytes& key, const Bytes& value, std::int64_t ttl) {
  if (ttl >= 0) return executeAndShowFailure(RedisCommand::set, {key, value, "EX"_bytes, decimal(ttl)}).ok;
  return executeAndShowFailure(RedisCommand::persist, Arguments(&key, 1)).ok &&
         executeAndShowFailure(RedisCommand::set, {key, value}).ok;
}

bool ServerItem::addSetMembers(const Bytes& key, const std::vector<Bytes>& members, std::int64_t ttl) {
  return writeThenExpire(RedisCommand::sadd, keyAndItems(key, members), ttl);
}

bool ServerItem::pushListItems(const Bytes& key, const std::vector<Bytes>& items, std::int64_t ttl) {
  return writeThenExpire(RedisCommand::rpush, keyAndItems(key, items), ttl);
}

bool ServerItem::setHashFields(const Bytes& key, const std::vector<Bytes>& fields, const std::vector<Bytes>& values,
                               std::int64_t ttl) {
  return writeThenExpire(RedisCommand::hmset, keyAndPairs(key, fields, values), ttl);
}

bool ServerItem::addSortedSetMembers(const Bytes& key, const std::vector<std::string>& scores,
                                     const std::vector<Bytes>& members, std::int64_t ttl) {
  return writeThenExpire(RedisCommand::zadd, keyAndPairs(key, scores, members), ttl);
}

}  // namespace tarn
