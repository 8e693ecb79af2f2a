#pragma once

#include "platform/foundation/Bytes.h"
#include "wire/request/Arguments.h"
#include "wire/request/RedisCommand.h"

namespace tarn {

// The command's own words and then its arguments, in multi-bulk form, the only one that is ever sent. Lengths count
// bytes, so a word may hold any. Pure; any thread.
Bytes encodeRequest(RedisCommand command, Arguments args);

}  // namespace tarn
