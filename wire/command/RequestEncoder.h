#pragma once

#include "platform/foundation/Bytes.h"
#include "wire/command/RedisCommand.h"

#include <span>
#include <string_view>

namespace tarn {

// The words in multi-bulk form, the only one that is ever sent. Lengths count bytes, so a word may hold any. Pure; any
// thread.
Bytes encodeRequest(std::span<const std::string_view> words);

// The command's own words and then its arguments.
Bytes encodeRequest(RedisCommand command, std::span<const std::string_view> args);

}  // namespace tarn
