#include "tests/support/LoopbackPort.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace tarn::test {

LoopbackPort::LoopbackPort() : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  // Bound, never listening: two sockets with SO_REUSEADDR may share a port as long as one of them doesn't listen, and
  // the system picks no port that is bound already.
  const int yes = 1;
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  const bool bound = descriptor_ >= 0 && ::setsockopt(descriptor_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) == 0 &&
                     ::bind(descriptor_, generic, size) == 0 && ::getsockname(descriptor_, generic, &size) == 0;
  if (!bound) {
    if (descriptor_ >= 0) ::close(descriptor_);
    throw std::runtime_error("No free port on 127.0.0.1");
  }
  number_ = ntohs(address.sin_port);
}

LoopbackPort::~LoopbackPort() {
  ::close(descriptor_);
}

}  // namespace tarn::test
