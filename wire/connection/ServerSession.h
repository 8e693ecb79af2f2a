#pragma once

#include "wire/reply/ReplyResult.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// What the server keeps of a connection, as the commands and their replies tell: its database, and the transaction that
// a console line has opened. A plain value.
class ServerSession final {
public:
  static constexpr int unknownDatabase = -1;

  // What a console line leaves to be done.
  struct After {
    // More comes on the connection than replies to what is sent: it is of no more use.
    bool moreToCome = false;
    // Where a SELECT in a transaction may have failed when its turn came: the database is then database(), or this one.
    std::optional<int> otherDatabase;
  };

  // True for a command that may end in another database.
  static bool mayMoveDatabase(const std::vector<std::string>& words);

  // The one in which the next command runs, or in an open transaction is queued to run.
  int database() const { return database_; }
  void setDatabase(int index) { database_ = index; }

  bool hasOpenTransaction() const { return databaseAtMulti_.has_value(); }

  // Follows a console line, of at least one word, by its reply and the text that the console shows of it.
  After follow(const std::vector<std::string>& words, ReplyType type, std::string_view text);

private:
  After endTransaction(bool executed);

  int database_ = 0;
  std::optional<int> databaseAtMulti_;
  // The transaction holds a command after which more comes than its reply.
  bool moreAfterExec_ = false;
};

}  // namespace tarn
