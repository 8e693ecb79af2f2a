#pragma once

#include "wire/reply/ReplyScanner.h"

#include <string>

namespace tarn {

// The text for the user of a reply that couldn't be read. Any thread.
std::string replyFailureMessage(ReplyScanner::Failure failure);

// The one of an array of which an element couldn't be read.
std::string elementFailureMessage();

}  // namespace tarn
