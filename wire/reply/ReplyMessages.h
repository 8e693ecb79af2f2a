#pragma once

#include "wire/reply/ReplyScanner.h"

#include <string>

namespace tarn {

// What the user is told about a reply that couldn't be read. Any thread.
std::string replyFailureMessage(ReplyScanner::Failure failure);

// What is told about an array of which an element couldn't be read.
std::string elementFailureMessage();

}  // namespace tarn
