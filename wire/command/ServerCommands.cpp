#include "wire/command/ServerCommands.h"

#include "platform/foundation/Log.h"
#include "platform/foundation/NSLocalizedString.h"
#include "wire/cluster/Redirects.h"

#include <algorithm>

namespace tarn {

namespace {

// One of each in turn behind the key, up to the end of the shorter.
template <typename First>
std::vector<std::string_view> keyAndPairs(const Bytes& key, const std::vector<First>& firsts,
                                          const std::vector<Bytes>& seconds) {
  const std::size_t count = std::min(firsts.size(), seconds.size());
  std::vector<std::string_view> args;
  args.reserve(2 * count + 1);
  args.push_back(key.view());
  for (std::size_t i = 0; i < count; ++i) {
    args.emplace_back(firsts[i].data(), firsts[i].size());
    args.push_back(seconds[i].view());
  }
  return args;
}

std::vector<std::string_view> keyAndItems(const Bytes& key, const std::vector<Bytes>& items) {
  std::vector<std::string_view> args;
  args.reserve(items.size() + 1);
  args.push_back(key.view());
  for (const Bytes& item : items)
    args.push_back(item.view());
  return args;
}

}  // namespace

ReplyResult ServerCommands::execute(RedisCommand command, Arguments args) {
  // The connection waits for it: a later command on the same key must not overtake this one on the way to its node.
  return connection_.execute(command, args, [&](ReplyResult reply) {
    if (!isRedirect(reply)) return reply;
    return followRedirects(std::move(reply), connection_, auth(), command, args);
  });
}

ReplyResult ServerCommands::executeAndShowFailure(RedisCommand command, Arguments args) {
  ReplyResult result = execute(command, args);
  if (!result.ok) showServerError(result.message);
  return result;
}

std::vector<Bytes> ServerCommands::listOf(RedisCommand command, Arguments args) {
  ReplyResult result = executeAndShowFailure(command, args);
  return result.ok && result.list ? *std::move(result.list) : std::vector<Bytes>();
}

bool ServerCommands::writeThenExpire(RedisCommand command, const std::vector<std::string_view>& args,
                                     std::int64_t ttl) {
  if (!executeAndShowFailure(command, args).ok) return false;
  return ttl < 0 || executeAndShowFailure(RedisCommand::expire, {args.front(), std::to_string(ttl)}).ok;
}

bool ServerCommands::selectDb(int index) {
  return executeAndShowFailure(RedisCommand::select, {std::to_string(index)}).ok;
}

std::pair<bool, std::string> ServerCommands::keyType(const Bytes& key) {
  ReplyResult result = executeAndShowFailure(RedisCommand::type, {key.view()});
  if (!result.ok) return {false, {}};
  if (auto* const word = result.value ? std::get_if<std::string>(&*result.value) : nullptr) {
    return {true, std::move(*word)};
  }
  showServerError(localizedString("Server reply: Error"));
  return {false, {}};
}

std::pair<bool, std::optional<std::string>> ServerCommands::keyTtl(const Bytes& key) {
  const ReplyResult result = executeAndShowFailure(RedisCommand::ttl, {key.view()});
  if (!result.ok) return {false, std::nullopt};
  const auto* const seconds = result.value ? std::get_if<std::int64_t>(&*result.value) : nullptr;
  return {true, seconds != nullptr ? std::optional(std::to_string(*seconds)) : std::nullopt};
}

std::pair<bool, Bytes> ServerCommands::getValue(const Bytes& key) {
  ReplyResult result = executeAndShowFailure(RedisCommand::get, {key.view()});
  if (!result.ok) return {false, {}};
  logLine("get success");
  auto* const value = result.value ? std::get_if<Bytes>(&*result.value) : nullptr;
  return {true, value != nullptr ? std::move(*value) : Bytes()};
}

std::vector<Bytes> ServerCommands::lrangeAll(const Bytes& key) {
  return listOf(RedisCommand::lrange, {key.view(), "0", "-1"});
}

std::vector<Bytes> ServerCommands::zrangeAll(const Bytes& key) {
  return listOf(RedisCommand::zrange, {key.view(), "0", "-1", "withscores"});
}

bool ServerCommands::deleteKey(const Bytes& key) {
  return executeAndShowFailure(RedisCommand::del, {key.view()}).ok;
}

bool ServerCommands::setValue(const Bytes& key, const Bytes& value, std::int64_t ttl) {
  if (ttl >= 0)
    return executeAndShowFailure(RedisCommand::set, {key.view(), value.view(), "EX", std::to_string(ttl)}).ok;
  return executeAndShowFailure(RedisCommand::persist, {key.view()}).ok &&
         executeAndShowFailure(RedisCommand::set, {key.view(), value.view()}).ok;
}

bool ServerCommands::addSetMembers(const Bytes& key, const std::vector<Bytes>& members, std::int64_t ttl) {
  return writeThenExpire(RedisCommand::sadd, keyAndItems(key, members), ttl);
}

bool ServerCommands::pushListItems(const Bytes& key, const std::vector<Bytes>& items, std::int64_t ttl) {
  return writeThenExpire(RedisCommand::rpush, keyAndItems(key, items), ttl);
}

bool ServerCommands::setHashFields(const Bytes& key, const std::vector<Bytes>& fields, const std::vector<Bytes>& values,
                                   std::int64_t ttl) {
  return writeThenExpire(RedisCommand::hmset, keyAndPairs(key, fields, values), ttl);
}

bool ServerCommands::addSortedSetMembers(const Bytes& key, const std::vector<std::string>& scores,
                                         const std::vector<Bytes>& members, std::int64_t ttl) {
  return writeThenExpire(RedisCommand::zadd, keyAndPairs(key, scores, members), ttl);
}

}  // namespace tarn
