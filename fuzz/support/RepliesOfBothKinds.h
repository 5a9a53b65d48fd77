#pragma once

#include "readings/Value.h"
#include "service/Replies.h"

#include <functional>

namespace orv {

/// Writes a reply as a bus message, reads the message back and requires it to be the value that the same reply is.
void requireSameReply(const std::function<void(ReplySink&)>& writeReply);

} // namespace orv
