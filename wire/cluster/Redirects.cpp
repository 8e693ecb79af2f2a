#include "wire/cluster/Redirects.h"

#include "platform/foundation/NSLocalizedString.h"
#include "wire/cluster/NodeAddress.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <utility>

namespace tarn {

namespace {

constexpr int maxRedirectHops = 16;

bool isRedirectLine(std::string_view line) {
  return line.starts_with("MOVED") || line.starts_with("ASK");
}

// Runs on a connection to the node that the line names, which lives no longer. Else answers with why it couldn't.
std::optional<std::string> runAtOtherNode(const std::string& line, int hops, const Connection& connection,
                                          const std::string& password, const std::function<void(Connection&)>& run) {
  const auto target = redirectTarget(line);
  if (!target) {
    return replacingPlaceholder(localizedString("Can not read the redirect of the cluster: {0}"), "{0}", line);
  }
  if (hops == maxRedirectHops) {
    return replacingPlaceholder(localizedString("The cluster redirects without end: {0}"), "{0}", line);
  }
  Connection node = connection.another();
  if (!node.connect({.name = {}, .host = target->host, .port = target->port, .password = password}, node.epoch()).ok) {
    return replacingPlaceholders(localizedString("Can not connect to cluster node server({0}:{1})"), target->host,
                                 std::to_string(target->port));
  }
  run(node);
  return std::nullopt;
}

}  // namespace

bool isRedirect(const ReplyResult& reply) {
  return reply.type == ReplyType::REDIS_REPLY_ERROR && isRedirectLine(reply.message);
}

std::optional<std::string> redirectOf(const Connection::Transaction& transaction) {
  if (transaction.end != Connection::Transaction::End::refused) return std::nullopt;
  if (isRedirectLine(transaction.failure)) return transaction.failure;
  const auto& replies = transaction.replies;
  if (replies.empty() || !std::ranges::all_of(replies, isRedirect)) return std::nullopt;
  const std::string& line = replies.front().message;
  const auto target = redirectTarget(line);
  const bool isOneNode =
      std::ranges::all_of(replies, [&](const ReplyResult& reply) { return redirectTarget(reply.message) == target; });
  return isOneNode ? std::optional(line) : std::nullopt;
}

ReplyResult followRedirects(ReplyResult reply, const Connection& connection, const std::string& password,
                            RedisCommand command, Arguments args) {
  for (int hops = 0; isRedirect(reply); ++hops) {
    auto failure = runAtOtherNode(reply.message, hops, connection, password,
                                  [&](Connection& node) { reply = node.execute(command, args); });
    if (failure) return ReplyResult::failure(*std::move(failure));
  }
  return reply;
}

Connection::Transaction followRedirects(Connection::Transaction transaction, const Connection& connection,
                                        const std::string& password, std::span<const Command> commands) {
  int hops = 0;
  while (const auto line = redirectOf(transaction)) {
    auto failure = runAtOtherNode(*line, hops++, connection, password,
                                  [&](Connection& node) { transaction = node.executeTransaction(commands); });
    if (failure) {
      return {.end = Connection::Transaction::End::refused, .failure = *std::move(failure), .replies = {}};
    }
  }
  return transaction;
}

}  // namespace tarn
