// How a value is written: whole or not at all where the server can, and what is told where it fails.

#include "platform/foundation/NSLocalizedString.h"
#include "wire/cluster/Redirects.h"
#include "wire/command/KeyWriting.h"
#include "wire/command/ServerCommands.h"

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

using Transaction = Connection::Transaction;
using End = Transaction::End;

std::string nothingChanged() {
  return localizedString("Nothing was changed on the server.");
}

bool hasRun(std::span<const Command> done, RedisCommand name) {
  return std::ranges::find(done, name, &Command::name) != done.end();
}

// What the server holds once the commands before the one at `failed` have run.
std::string whatIsLeft(std::span<const Command> commands, std::size_t failed) {
  const auto done = commands.first(failed);
  if (commands[failed].name == RedisCommand::expire) {
    return localizedString("The value is on the server, but without its time to live: save again.");
  }
  if (hasRun(done, RedisCommand::del)) {
    return localizedString("The key is no longer on the server. This form still holds its value: save again.");
  }
  if (hasRun(done, RedisCommand::persist)) {
    return localizedString("The key still has its former value on the server, but no time to live any more.");
  }
  return nothingChanged();
}

WriteOutcome failure(std::string message, std::string whatIsLeft, bool isOldKeyGone = false) {
  return {.isWritten = false,
          .isOldKeyGone = isOldKeyGone,
          .message = std::move(message),
          .whatIsLeft = std::move(whatIsLeft)};
}

// The old and the new key lie on two nodes, or at least in two slots.
bool crossesNodes(const Transaction& transaction) {
  if (transaction.end != End::refused || redirectOf(transaction)) return false;
  return transaction.failure.starts_with("CROSSSLOT") || std::ranges::any_of(transaction.replies, isRedirect);
}

WriteOutcome outcomeOf(const Transaction& transaction, std::span<const Command> commands, bool isMove) {
  const auto& replies = transaction.replies;
  const auto failed = std::ranges::find(replies, false, &ReplyResult::ok);
  switch (transaction.end) {
    case End::unknown:
      return failure(transaction.failure,
                     localizedString("It isn't known whether the server has saved this: the key holds either all of it "
                                     "or what it held before. Reload shows which."));
    case End::notTaken:
    case End::refused:
      return failure(failed == replies.end() ? transaction.failure : failed->message, nothingChanged());
    case End::run:
      break;
  }
  if (failed == replies.end()) return {.isWritten = true, .isOldKeyGone = isMove, .message = {}, .whatIsLeft = {}};
  const auto index = static_cast<std::size_t>(failed - replies.begin());
  return failure(failed->message, whatIsLeft(commands, index), isMove && index > 0);
}

}  // namespace

WriteOutcome ServerCommands::write(const KeyWriting& writing) {
  const Transaction whole = executeTransaction(writing.commands());
  if (whole.end == End::notTaken) return writeOneByOne(writing);
  if (writing.isMove() && crossesNodes(whole)) return writeThenDelete(writing);
  return outcomeOf(whole, writing.commands(), writing.isMove());
}

Transaction ServerCommands::executeTransaction(std::span<const Command> commands) {
  return connection_.executeTransaction(commands, [&](Transaction transaction) {
    return followRedirects(std::move(transaction), connection_, auth(), commands);
  });
}

// For a server that takes no transaction.
WriteOutcome ServerCommands::writeOneByOne(const KeyWriting& writing) {
  const auto commands = writing.commands();
  for (std::size_t i = 0; i < commands.size(); ++i) {
    ReplyResult reply = execute(commands[i].name, commands[i].words);
    if (!reply.ok) {
      return failure(std::move(reply.message), whatIsLeft(commands, i), writing.isMove() && i > 0);
    }
  }
  return {.isWritten = true, .isOldKeyGone = writing.isMove(), .message = {}, .whatIsLeft = {}};
}

// For a move from one node to another, which no transaction spans: at no moment is there neither key.
WriteOutcome ServerCommands::writeThenDelete(const KeyWriting& writing) {
  const auto commands = writing.commandsOnKey();
  const Transaction written = executeTransaction(commands);
  WriteOutcome outcome = outcomeOf(written, commands, false);
  if (!outcome.isWritten) return outcome;
  const Command& deletion = writing.commands().front();
  ReplyResult deleted = execute(deletion.name, deletion.words);
  outcome.isOldKeyGone = deleted.ok;
  if (!deleted.ok) {
    outcome.message = std::move(deleted.message);
    outcome.whatIsLeft = localizedString("The value is saved under its new key. The old key is still there.");
  }
  return outcome;
}

}  // namespace tarn
