#include "wire/cluster/Redirects.h"

#include "platform/foundation/NSLocalizedString.h"
#include "wire/cluster/NodeAddress.h"

#include <utility>

namespace tarn {

namespace {

constexpr int maxRedirectHops = 16;

}  // namespace

bool isRedirect(const ReplyResult& reply) {
  return reply.type == ReplyType::REDIS_REPLY_ERROR &&
         (reply.message.starts_with("MOVED") || reply.message.starts_with("ASK"));
}

ReplyResult followRedirects(ReplyResult reply, const Connection& connection, const std::string& password,
                            RedisCommand command, Arguments args) {
  for (int hops = 0; isRedirect(reply); ++hops) {
    const std::string& line = reply.message;
    const auto target = redirectTarget(line);
    if (!target) {
      return ReplyResult::failure(
          replacingPlaceholder(localizedString("Can not read the redirect of the cluster: {0}"), "{0}", line));
    }
    if (hops == maxRedirectHops) {
      return ReplyResult::failure(
          replacingPlaceholder(localizedString("The cluster redirects without end: {0}"), "{0}", line));
    }
    Connection node = connection.another();
    if (!node.connect({.name = {}, .host = target->host, .port = target->port, .password = password}, node.epoch())
             .ok) {
      return ReplyResult::failure(
          replacingPlaceholders(localizedString("Can not connect to cluster node server({0}:{1})"), target->host,
                                std::to_string(target->port)));
    }
    reply = node.execute(command, args);
  }
  return reply;
}

}  // namespace tarn
