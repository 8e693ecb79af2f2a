#pragma once

#include "platform/foundation/Bytes.h"
#include "wire/request/Arguments.h"
#include "wire/request/Command.h"
#include "wire/request/RedisCommand.h"

#include <span>

namespace tarn {

// The command's own words and then its arguments, in multi-bulk form, the only one that is ever sent. Lengths count
// bytes, so a word may hold any. Pure; any thread.
Bytes encodeRequest(RedisCommand command, Arguments args);

// The requests of all the commands, one behind the other, as one block.
Bytes encodeRequests(std::span<const Command> commands);

}  // namespace tarn
