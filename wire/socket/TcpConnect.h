#pragma once

#include "wire/socket/SocketCalls.h"
#include "wire/stream/StreamOpener.h"

namespace tarn {

// Resolves the host, connects within 5 seconds and tunes the socket: it waits up to 5 seconds for the server, and
// notices a server that is gone. The calls must outlive the opener and its streams.
StreamOpener tcpOpener(SocketCalls& calls = SocketCalls::system());

}  // namespace tarn
