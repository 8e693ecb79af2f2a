#include "wire/connection/ServerSession.h"

#include "platform/foundation/DecimalNumber.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <span>
#include <utility>

namespace tarn {

namespace {

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
  return text;
}

bool isOneOf(std::string_view command, std::span<const std::string_view> commands) {
  return std::find(commands.begin(), commands.end(), command) != commands.end();
}

// Commands to which the server goes on answering, or answers more than once.
bool leavesMoreToCome(std::string_view command) {
  constexpr std::array<std::string_view, 9> commands{"subscribe",   "psubscribe",   "ssubscribe",
                                                     "unsubscribe", "punsubscribe", "sunsubscribe",
                                                     "monitor",     "sync",         "psync"};
  return isOneOf(command, commands);
}

}  // namespace

bool ServerSession::mayMoveDatabase(const std::vector<std::string>& words) {
  constexpr std::array<std::string_view, 4> commands{"select", "reset", "exec", "discard"};
  return !words.empty() && isOneOf(lowerCase(words.front()), commands);
}

ServerSession::After ServerSession::follow(const std::vector<std::string>& words, ReplyType type,
                                           std::string_view text) {
  const std::string command = lowerCase(words.front());
  const bool isStatus = type == ReplyType::REDIS_REPLY_STATUS;
  const bool isDone = isStatus && text == "OK";
  const bool isQueued = isStatus && text == "QUEUED";
  if (command == "exec") return endTransaction(type == ReplyType::REDIS_REPLY_ARRAY && text.starts_with('\n'));
  if (command == "discard" && isDone) return endTransaction(false);
  if (leavesMoreToCome(command) && type != ReplyType::REDIS_REPLY_ERROR) {
    moreAfterExec_ = isQueued;
    return {.moreToCome = !isQueued, .otherDatabase = {}};
  }
  if (command == "select" && words.size() > 1 && (isQueued || isDone)) {
    database_ = static_cast<int>(decimalInteger(words[1]).value_or(unknownDatabase));
  } else if (command == "multi" && isDone) {
    databaseAtMulti_ = database_;
  } else if (command == "reset" && isStatus && text == "RESET") {
    *this = {};
  }
  return {};
}

ServerSession::After ServerSession::endTransaction(bool executed) {
  const bool moreToCome = std::exchange(moreAfterExec_, false) && executed;
  const std::optional<int> before = std::exchange(databaseAtMulti_, std::nullopt);
  if (before && !executed) database_ = *before;
  return {.moreToCome = moreToCome, .otherDatabase = before == database_ ? std::nullopt : before};
}

}  // namespace tarn
