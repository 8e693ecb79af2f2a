#include "wire/command/ServerCommands.h"

#include "platform/foundation/Log.h"
#include "platform/foundation/NSLocalizedString.h"
#include "wire/cluster/Redirects.h"

namespace tarn {

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

ServerCommands::Found ServerCommands::listOf(RedisCommand command, Arguments args) {
  ReplyResult result = executeAndShowFailure(command, args);
  if (result.ok && !result.list) showServerError(localizedString("Server reply: Error"));
  return std::move(result.list);
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

ServerCommands::Found ServerCommands::lrangeAll(const Bytes& key) {
  return listOf(RedisCommand::lrange, {key.view(), "0", "-1"});
}

ServerCommands::Found ServerCommands::zrangeAll(const Bytes& key) {
  return listOf(RedisCommand::zrange, {key.view(), "0", "-1", "withscores"});
}

bool ServerCommands::deleteKey(const Bytes& key) {
  return executeAndShowFailure(RedisCommand::del, {key.view()}).ok;
}

}  // namespace tarn
