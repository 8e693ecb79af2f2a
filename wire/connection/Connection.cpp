#include "wire/connection/Connection.h"

#include "platform/foundation/DecimalNumber.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSLocalizedString.h"
#include "wire/reply/ConsoleReplyReader.h"
#include "wire/reply/ReplyReader.h"
#include "wire/request/RequestEncoder.h"

#include <utility>

namespace tarn {

ConnectionStatus Connection::status() const {
  const MutexLock lock(stateMutex_);
  return status_;
}

void Connection::setStatus(ConnectionStatus status) {
  const MutexLock lock(stateMutex_);
  status_ = status;
}

Connection::Epoch Connection::epoch() const {
  const MutexLock lock(stateMutex_);
  return epoch_;
}

int Connection::database() const {
  const MutexLock lock(stateMutex_);
  return session_.database();
}

bool Connection::hasOpenTransaction() const {
  const MutexLock lock(stateMutex_);
  return session_.hasOpenTransaction();
}

Connection::Outcome Connection::connect(const ServerAddress& address, Epoch began, int database) {
  Outcome outcome;
  {
    const MutexLock lock(commandMutex_);
    outcome = open(address, began);
    if (!outcome.isOpen) return outcome;
    if (!address.password.empty()) {
      ReplyResult reply = requestAndReply(RedisCommand::auth, {address.password}, began);
      outcome.ok = reply.ok;
      outcome.message = std::move(reply.message);
    }
    if (outcome.ok && database > 0) select(database);
  }
  if (wasClosedSince(began)) {
    outcome.ok = false;
    outcome.closed = true;
    outcome.message = replacingPlaceholder(localizedString("Can not connect to Server({0})."), "{0}", address.name);
  }
  return outcome;
}

Connection::Outcome Connection::open(const ServerAddress& address, Epoch began) {
  const ConnectSteps steps{
      .opened = [&](std::shared_ptr<ByteStream> stream) { return keepStream(std::move(stream), began); },
      .statusChanged = [&](ConnectionStatus status) { return setStatusUnlessClosed(began, status); },
  };
  auto failure = opener_(address, steps);
  if (!failure) return {.ok = true, .message = {}, .closed = false, .isOpen = true};
  dropStream();
  const bool closed = failure->status ? !setStatusUnlessClosed(began, *failure->status) : wasClosedSince(began);
  return {.ok = false, .message = std::move(failure->message), .closed = closed, .isOpen = false};
}

void Connection::close() {
  std::shared_ptr<ByteStream> stream;
  {
    const MutexLock lock(stateMutex_);
    ++epoch_;
    stream.swap(stream_);
    status_ = ConnectionStatus::notConnected;
  }
  if (stream) stream->shutDown();
}

bool Connection::isAlive() {
  const MutexLock lock(commandMutex_);
  const auto stream = this->stream();
  return stream && stream->isAlive();
}

ReplyResult Connection::execute(RedisCommand command, Arguments args, const Complete& complete) {
  const MutexLock lock(commandMutex_);
  ReplyResult result = requestAndReply(command, args, std::nullopt);
  if (command == RedisCommand::select && result.ok && !args.empty()) {
    const auto index = decimalInteger(args[0]);
    const MutexLock stateLock(stateMutex_);
    session_.setDatabase(static_cast<int>(index.value_or(0)));
  }
  return complete ? complete(std::move(result)) : result;
}

// With `began`, a close() since then keeps the status that it set.
ReplyResult Connection::requestAndReply(RedisCommand command, Arguments args, std::optional<Epoch> began) {
  const auto stream = this->stream();
  if (!stream || !stream->isAlive()) {
    lose(began);
    return ReplyResult::failure(localizedString("Can not connect to server, Please Reconnect to the server."));
  }
  const Bytes request = encodeRequest(command, args);
  if (stream->wasShutDown()) {
    lose(began);
    return ReplyResult::failure(localizedString("Can not connect to server"));
  }
  if (!send(*stream, request.view())) return ReplyResult::failure(localizedString("Can not connect to server"));
  return readReply(*stream, began);
}

bool Connection::send(ByteStream& stream, std::string_view request) {
  const bool isSent = stream.sendAll(request);
  if (!isSent) dropStream();
  return isSent;
}

ReplyResult Connection::readReply(ByteStream& stream, std::optional<Epoch> began) {
  ReplyReader reader(stream);
  ReplyResult result = reader.readReply();
  if (reader.lostConnection()) lose(began);
  return result;
}

Connection::Transaction Connection::executeTransaction(std::span<const Command> commands,
                                                       const CompleteTransaction& complete) {
  const MutexLock lock(commandMutex_);
  Transaction transaction = runTransaction(commands);
  return complete ? complete(std::move(transaction)) : transaction;
}

Connection::Transaction Connection::runTransaction(std::span<const Command> commands) {
  using End = Transaction::End;
  const auto ended = [](End end, std::string failure) {
    return Transaction{.end = end, .failure = std::move(failure), .replies = {}};
  };
  if (hasOpenTransaction()) {
    return ended(End::refused,
                 localizedString("A transaction is open in the console. End it with EXEC or DISCARD first."));
  }
  ReplyResult begun = requestAndReply(RedisCommand::multi, {}, std::nullopt);
  if (!begun.ok) return ended(begun.type ? End::notTaken : End::refused, std::move(begun.message));

  const auto stream = this->stream();
  Bytes requests = encodeRequests(commands);
  requests.append(encodeRequest(RedisCommand::exec, {}).view());
  // Without its end the server discards what came of it.
  if (!stream || !send(*stream, requests.view())) {
    return ended(End::refused, localizedString("Can not connect to server"));
  }
  Transaction transaction;
  for (std::size_t i = 0; i < commands.size(); ++i) {
    ReplyResult reply = readReply(*stream, std::nullopt);
    if (!reply.ok && !reply.type) {
      lose(std::nullopt);
      return ended(End::unknown, std::move(reply.message));
    }
    transaction.replies.push_back(std::move(reply));
  }
  readExecution(*stream, transaction);
  return transaction;
}

void Connection::readExecution(ByteStream& stream, Transaction& transaction) {
  ReplyReader reader(stream);
  ReplyReader::Replies executed = reader.readReplies();
  if (reader.lostConnection()) {
    lose(std::nullopt);
  } else if (executed.whole.ok && executed.elements.size() == transaction.replies.size()) {
    transaction.end = Transaction::End::run;
    transaction.replies = std::move(executed.elements);
    return;
  } else if (!executed.whole.ok) {
    transaction.end = Transaction::End::refused;
  }
  transaction.failure = executed.whole.ok ? localizedString("Server reply: Error") : std::move(executed.whole.message);
}

ByteStream::Traffic Connection::traffic() const {
  const auto stream = this->stream();
  return stream ? stream->traffic() : ByteStream::Traffic();
}

bool Connection::select(int index) {
  if (!requestAndReply(RedisCommand::select, {std::to_string(index)}, std::nullopt).ok) return false;
  const MutexLock lock(stateMutex_);
  session_.setDatabase(index);
  return true;
}

Connection::LineReply Connection::executeLine(const std::vector<std::string>& words, Epoch began) {
  using End = LineReply::End;
  const MutexLock lock(commandMutex_);
  const auto stream = sendLine(words);
  if (!stream) {
    lose(began);
    return {.end = End::notSent, .text = {}, .failure = {}};
  }
  LineReply reply;
  std::optional<ReplyType> type;
  {
    // It takes what it has read off the stream when it goes.
    ConsoleReplyReader reader(*stream);
    reply.text = reader.readReply();
    type = reader.type();
    if (reader.failure()) {
      reply.failure = *reader.failure();
      reply.end = End::brokenOff;
    }
  }
  if (reply.end == End::brokenOff) {
    lose(began);
  } else if (followLine(words, *type, reply.text)) {
    dropStream();
    reply.end = End::moreToCome;
  }
  return reply;
}

// Null if the connection is lost.
std::shared_ptr<ByteStream> Connection::sendLine(const std::vector<std::string>& words) {
  auto stream = this->stream();
  if (!stream) return nullptr;
  const Bytes request = encodeRequest(RedisCommand::raw, std::vector<std::string_view>(words.begin(), words.end()));
  const bool sent = !stream->wasShutDown() && stream->sendAll(request.view());
  logLine("sendCount:::" + (sent ? std::to_string(request.size()) : "-1") +
          ":::dataCount:::" + std::to_string(request.size()));
  return sent ? stream : nullptr;
}

// True if more than this reply is to come.
bool Connection::followLine(const std::vector<std::string>& words, ReplyType type, std::string_view text) {
  ServerSession::After after;
  int database = 0;
  {
    const MutexLock lock(stateMutex_);
    after = session_.follow(words, type, text);
    database = session_.database();
  }
  if (after.moreToCome) return true;
  if (after.otherDatabase && !select(database) && !select(*after.otherDatabase)) {
    const MutexLock lock(stateMutex_);
    session_.setDatabase(ServerSession::unknownDatabase);
  }
  return false;
}

std::shared_ptr<ByteStream> Connection::stream() const {
  const MutexLock lock(stateMutex_);
  return stream_;
}

// From here on close() finds the stream and ends what waits on it. False if it came before.
bool Connection::keepStream(std::shared_ptr<ByteStream> stream, Epoch began) {
  const MutexLock lock(stateMutex_);
  if (epoch_ != began) return false;
  stream_.swap(stream);
  session_ = {};
  return true;
}

bool Connection::setStatusUnlessClosed(Epoch began, ConnectionStatus status) {
  const MutexLock lock(stateMutex_);
  if (epoch_ != began) return false;
  status_ = status;
  return true;
}

void Connection::dropStream() {
  std::shared_ptr<ByteStream> stream;
  const MutexLock lock(stateMutex_);
  stream.swap(stream_);
}

// The status follows, unless close() came after `began`.
void Connection::lose(std::optional<Epoch> began) {
  std::shared_ptr<ByteStream> stream;
  const MutexLock lock(stateMutex_);
  stream.swap(stream_);
  if (!began || epoch_ == *began) status_ = ConnectionStatus::disConnected;
}

}  // namespace tarn
