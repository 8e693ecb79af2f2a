#pragma once

#include "platform/foundation/Mutex.h"
#include "wire/connection/ServerSession.h"
#include "wire/reply/ReplyResult.h"
#include "wire/request/Arguments.h"
#include "wire/request/Command.h"
#include "wire/request/RedisCommand.h"
#include "wire/stream/ByteStream.h"
#include "wire/stream/ConnectionStatus.h"
#include "wire/stream/ServerAddress.h"
#include "wire/stream/StreamOpener.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {

// The one connection to a server, opened and closed as often as its owner likes: what carries its bytes, its status,
// and what the server keeps of it. It knows what goes over the wire and nothing of who shows it.
//
// Threads: any may call any operation. Those that talk to the server block until the reply is in; a lock keeps each
// request with its reply. Closing waits for nothing, and ends what waits.
class Connection final {
public:
  // Counts the calls of close(): what began before one must not undo what it did.
  using Epoch = std::uint64_t;

  struct Outcome {
    bool ok = false;
    // Where not ok, the text for the user.
    std::string message;
    // close() ran while the connect was under way, which is why it failed: whoever closed has shown the state as it is
    // now, so there is nothing to show.
    bool closed = false;
    // There is a connection; also where the server refused the password.
    bool isOpen = false;
  };

  // How a console line ended.
  struct LineReply {
    enum class End {
      whole,
      // There is no connection, or none any more.
      notSent,
      // The reply can't be read to its end, and the connection is gone; `failure` says why.
      brokenOff,
      // More would have come than this reply: the connection was given up.
      moreToCome,
    };

    End end = End::whole;
    // The reply as the console shows it.
    std::string text;
    std::string failure;
  };

  // How commands ended that the server was to run all or none of.
  struct Transaction {
    enum class End {
      // The server takes no transaction; nothing else was sent.
      notTaken,
      // None of them has run, and none will.
      refused,
      // All have run, each to its own end.
      run,
      // The connection was lost before the answer came: all have run, or none.
      unknown,
    };

    End end = End::unknown;
    // Why they haven't run, or aren't known to have.
    std::string failure;
    // To each command in turn: how it ran, or what the server said when it was to be queued.
    std::vector<ReplyResult> replies;
  };

  explicit Connection(StreamOpener opener) : opener_(std::move(opener)) {}
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // One to another server, with the same opener. It isn't open.
  Connection another() const { return Connection(opener_); }

  ConnectionStatus status() const;
  void setStatus(ConnectionStatus status);

  Epoch epoch() const;
  bool wasClosedSince(Epoch began) const { return epoch() != began; }

  // As the server has it: 0 on a new connection. ServerSession::unknownDatabase where a transaction left it open.
  int database() const;
  bool hasOpenTransaction() const;

  // Connects within 5 seconds and authenticates. With a refused password the status is `connected` all the same. A
  // database other than the first is selected before any other command gets to the new connection; where the server
  // refuses it, database() shows that. Fails if close() has run since `began`.
  Outcome connect(const ServerAddress& address, Epoch began, int database = 0);

  // Without waiting: shuts the connection down; status `notConnected`. A connect under way fails, and leaves the status
  // as set here.
  void close();

  // True while there is a connection that the server hasn't closed; takes nothing from the stream.
  bool isAlive();

  // Sends one command and reads its reply. Where that fails the connection is gone. `complete` may go on with the
  // reply, at another node, before the next command gets to this connection.
  using Complete = std::function<ReplyResult(ReplyResult reply)>;
  ReplyResult execute(RedisCommand command, Arguments args, const Complete& complete = {});

  // Has the server run the commands one behind the other, with nothing between and whole or not at all, whatever
  // becomes of the connection meanwhile. MULTI goes first and alone, since a server that refuses it would run what
  // follows; all else is sent at once. `complete` as with execute().
  using CompleteTransaction = std::function<Transaction(Transaction transaction)>;
  Transaction executeTransaction(std::span<const Command> commands, const CompleteTransaction& complete = {});

  // The traffic of the present connection. Waits for nothing.
  ByteStream::Traffic traffic() const;

  // Sends a console line, of at least one word, and reads its reply. Where that fails the status follows, unless
  // close() has run since `began`.
  LineReply executeLine(const std::vector<std::string>& words, Epoch began);

private:
  Outcome open(const ServerAddress& address, Epoch began) REQUIRES(commandMutex_);
  ReplyResult requestAndReply(RedisCommand command, Arguments args, std::optional<Epoch> began) REQUIRES(commandMutex_);
  Transaction runTransaction(std::span<const Command> commands) REQUIRES(commandMutex_);
  void readExecution(ByteStream& stream, Transaction& transaction) REQUIRES(commandMutex_);
  bool send(ByteStream& stream, std::string_view request) REQUIRES(commandMutex_);
  ReplyResult readReply(ByteStream& stream, std::optional<Epoch> began) REQUIRES(commandMutex_);
  bool select(int index) REQUIRES(commandMutex_);
  std::shared_ptr<ByteStream> sendLine(const std::vector<std::string>& words) REQUIRES(commandMutex_);
  bool followLine(const std::vector<std::string>& words, ReplyType type, std::string_view text) REQUIRES(commandMutex_);

  std::shared_ptr<ByteStream> stream() const;
  bool keepStream(std::shared_ptr<ByteStream> stream, Epoch began);
  bool setStatusUnlessClosed(Epoch began, ConnectionStatus status);
  void dropStream();
  void lose(std::optional<Epoch> began);

  const StreamOpener opener_;

  // Held for one whole connect, or one whole request and reply.
  Mutex commandMutex_;

  // Never held over a call that waits.
  mutable Mutex stateMutex_;
  std::shared_ptr<ByteStream> stream_ GUARDED_BY(stateMutex_);
  ConnectionStatus status_ GUARDED_BY(stateMutex_) = ConnectionStatus::notConnected;
  Epoch epoch_ GUARDED_BY(stateMutex_) = 0;
  ServerSession session_ GUARDED_BY(stateMutex_);
};

}  // namespace tarn
