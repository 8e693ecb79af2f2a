#pragma once

#include "wire/connection/Connection.h"
#include "wire/reply/ReplyResult.h"
#include "wire/request/Arguments.h"
#include "wire/request/Command.h"
#include "wire/request/RedisCommand.h"

#include <optional>
#include <span>
#include <string>

namespace tarn {

// True for the answer of a node that has handed the key over to another one.
bool isRedirect(const ReplyResult& reply);

// Sends the command to the node that `reply` names, and on to the one that this names. Each gets a connection of its
// own, made like `connection`, for this one command. Blocks; answers with the first reply that is no
// redirect, or with why there is none.
ReplyResult followRedirects(ReplyResult reply, const Connection& connection, const std::string& password,
                            RedisCommand command, Arguments args);

// The line by which the node hands all commands of a transaction over to one other node; nothing where it doesn't.
std::optional<std::string> redirectOf(const Connection::Transaction& transaction);

// The same for a transaction, which goes to the other node as a whole.
Connection::Transaction followRedirects(Connection::Transaction transaction, const Connection& connection,
                                        const std::string& password, std::span<const Command> commands);

}  // namespace tarn
