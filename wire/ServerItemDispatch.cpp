// How a ServerItem sends one command, reads its reply and follows the redirects of a cluster.

#include "platform/foundation/NSLocalizedString.h"
#include "wire/DecimalNumber.h"
#include "wire/ServerItem.h"
#include "wire/cluster/NodeAddress.h"
#include "wire/command/RequestEncoder.h"
#include "wire/reply/ReplyReader.h"
#include "wire/socket/Socket.h"

namespace tarn {

namespace {

constexpr int maxRedirectHops = 16;

ReplyResult failedCommand(std::string message) {
  return {.ok = false, .message = std::move(message), .value = {}, .list = {}, .type = {}};
}

bool isRedirect(const ReplyResult& result) {
  return result.type == ReplyType::REDIS_REPLY_ERROR &&
         (result.message.starts_with("MOVED") || result.message.starts_with("ASK"));
}

}  // namespace

ReplyResult ServerItem::execute(RedisCommand command, const std::vector<Bytes>& args) {
  std::vector<std::string_view> words;
  words.reserve(args.size());
  for (const Bytes& arg : args)
    words.push_back(arg.view());
  return exchange(command, words, std::nullopt);
}

// With `began`, a closeConnection since then keeps the status that it set.
ReplyResult ServerItem::exchange(RedisCommand command, Arguments args, std::optional<Closings> began) {
  const std::lock_guard lock(commandLocker_);
  ReplyResult result = requestAndReply(command, args, began);
  while (isRedirect(result))
    result = followRedirect(result.message, command, args);
  if (command == RedisCommand::select && result.ok && !args.empty()) {
    const auto index = decimalInteger(args.front());
    const std::lock_guard stateLock(stateMutex_);
    currentDbIdx_ = static_cast<int>(index.value_or(0));
  }
  return result;
}

ReplyResult ServerItem::requestAndReply(RedisCommand command, Arguments args, std::optional<Closings> began) {
  const auto socket = this->socket();
  if (!socket || !socket->isAlive()) {
    loseConnection(began);
    return failedCommand(localizedString("Can not connect to server, Please Reconnect to the server."));
  }
  const Bytes request = encodeRequest(command, args);
  if (socket->wasShutDown()) {
    loseConnection(began);
    return failedCommand(localizedString("Can not connect to server"));
  }
  if (!socket->sendAll(request.view())) {
    dropSocket();
    return failedCommand(localizedString("Can not connect to server"));
  }
  ReplyReader reader(*socket);
  ReplyResult result = reader.readReply();
  if (reader.lostConnection()) loseConnection(began);
  return result;
}

ReplyResult ServerItem::followRedirect(std::string_view line, RedisCommand command, Arguments args) {
  const auto target = redirectTarget(line);
  if (!target) {
    return failedCommand(
        replacingPlaceholder(localizedString("Can not read the redirect of the cluster: {0}"), "{0}", line));
  }
  if (redirectHops_ == maxRedirectHops) {
    return failedCommand(replacingPlaceholder(localizedString("The cluster redirects without end: {0}"), "{0}", line));
  }
  const auto node = transientItem(*target);
  node->redirectHops_ = redirectHops_ + 1;
  if (!node->connectToServer().ok) {
    return failedCommand(replacingPlaceholders(localizedString("Can not connect to cluster node server({0}:{1})"),
                                               target->host, std::to_string(target->port)));
  }
  ReplyResult result = node->exchange(command, args, std::nullopt);
  node->closeConnection();
  return result;
}

}  // namespace tarn
