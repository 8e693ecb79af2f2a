#pragma once

#include "wire/request/RedisCommand.h"

#include <string_view>
#include <vector>

namespace tarn {

// A command with its words, which are borrowed as those of Arguments are: one of several that are sent together.
struct Command {
  RedisCommand name = RedisCommand::raw;
  std::vector<std::string_view> words;
};

}  // namespace tarn
