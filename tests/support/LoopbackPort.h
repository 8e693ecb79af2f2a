#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace tarn::test {

// A TCP port of 127.0.0.1 that the system gives to nobody else while this lives: tests run side by side and must not
// meet on a port. A server that sets SO_REUSEADDR, as redis-server does, can listen on it; while none does, a connect
// is refused at once. Throws std::runtime_error if there is none.
class LoopbackPort final {
public:
  // Bound, never listening: two sockets with SO_REUSEADDR may share a port as long as one of them doesn't listen, and
  // the system picks no port that is bound already.
  LoopbackPort() : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const int yes = 1;
    address_.sin_family = AF_INET;
    address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address_;
    auto* const address = reinterpret_cast<sockaddr*>(&address_);
    if (::setsockopt(descriptor_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) == 0 &&
        ::bind(descriptor_, address, size) == 0 && ::getsockname(descriptor_, address, &size) == 0)
      return;
    ::close(descriptor_);
    throw std::runtime_error("No free port on 127.0.0.1");
  }
  LoopbackPort(const LoopbackPort&) = delete;
  LoopbackPort& operator=(const LoopbackPort&) = delete;
  ~LoopbackPort() { ::close(descriptor_); }

  int number() const { return ntohs(address_.sin_port); }
  // The socket that holds the port, for a test that listens on it itself.
  int descriptor() const { return descriptor_; }

private:
  const int descriptor_;
  sockaddr_in address_{};
};

}  // namespace tarn::test
