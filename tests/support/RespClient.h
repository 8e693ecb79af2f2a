#pragma once

#include "tests/support/RespPeer.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace tarn::test {

// The plainest client there is, for tests to set up and check a server with: one connection, one request at a time.
// Every failure throws std::runtime_error; a server that says nothing for a minute is one.
class RespClient final {
public:
  explicit RespClient(int port) : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), peer_(descriptor_) {
    const timeval patience{.tv_sec = 60, .tv_usec = 0};
    ::setsockopt(descriptor_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    require(::connect(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, "No server listens");
  }

  // The raw reply, whole.
  std::string command(const std::vector<std::string>& words) {
    require(peer_.send(encodedRequest(words)), "The server took no request");
    return reply();
  }

  // Sends many requests in one go and drops their replies; throws if one of them is an error.
  void pipeline(const std::vector<std::vector<std::string>>& requests) {
    std::string bytes;
    for (const auto& words : requests)
      bytes += encodedRequest(words);
    require(peer_.send(bytes), "The server took no request");
    for (std::size_t i = 0; i < requests.size(); ++i) {
      const std::string answer = reply();
      require(!answer.starts_with('-'), answer);
    }
  }

private:
  static void require(bool held, const std::string& failure) {
    if (!held) throw std::runtime_error(failure);
  }
  std::string reply() {
    std::string reply = peer_.read();
    require(!reply.empty(), "The server's reply broke off");
    return reply;
  }

  const int descriptor_;
  RespPeer peer_;
};

}  // namespace tarn::test
