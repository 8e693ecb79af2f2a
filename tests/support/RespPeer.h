#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn::test {

// A TCP port of 127.0.0.1 that the system gives to nobody else while this lives. A server that sets SO_REUSEADDR, as
// redis-server does, can listen on it; while none does, a connect is refused at once.
class LoopbackPort final {
public:
  // Two sockets with SO_REUSEADDR may share a port as long as one of them doesn't listen.
  LoopbackPort() : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const int yes = 1;
    address_.sin_family = AF_INET;
    address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address_;
    auto* const address = reinterpret_cast<sockaddr*>(&address_);
    if (::setsockopt(descriptor_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) == 0 &&
        ::bind(descriptor_, address, size) == 0 && ::getsockname(descriptor_, address, &size) == 0)
      return;
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

// A request in multi-bulk form.
inline std::string encodedRequest(const std::vector<std::string>& words) {
  std::string request = "*" + std::to_string(words.size()) + "\r\n";
  for (const std::string& word : words)
    request += "$" + std::to_string(word.size()) + "\r\n" + word + "\r\n";
  return request;
}

// One end of a connection: reads whole requests or replies off it, and keeps every byte that it received. Belongs to
// one thread; any other may call shutDown() and received().
class RespPeer final {
public:
  // Owns the descriptor.
  explicit RespPeer(int descriptor) : descriptor_(descriptor) {}
  ~RespPeer() { close(); }

  // The next request or reply, raw and whole; empty if the stream ended before.
  std::string read() {
    const std::size_t end = endOfValue(consumed_);
    if (end == std::string::npos) return {};
    const std::size_t start = std::exchange(consumed_, end);
    return received_.substr(start, end - start);
  }

  // The words of the next request; empty if the stream ended before.
  std::vector<std::string> readRequest() {
    const std::string request = read();
    std::vector<std::string> words;
    for (std::size_t next = request.find('$'); next < request.size();) {
      const std::size_t start = request.find("\r\n", next) + 2;
      words.push_back(request.substr(start, std::stoul(request.substr(next + 1))));
      next = start + words.back().size() + 2;
    }
    return words;
  }

  // False if the other end closed before it had all.
  bool send(std::string_view bytes) {
    return ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
  }

  // Closing over unread bytes would reset the connection, and the other end might lose what was sent last.
  void close() {
    if (descriptor_ < 0) return;
    ::shutdown(descriptor_, SHUT_WR);
    while (receiveMore(MSG_DONTWAIT)) {
    }
    const std::lock_guard lock(mutex_);
    ::close(std::exchange(descriptor_, -1));
  }

  // Wakes whoever reads.
  void shutDown() {
    const std::lock_guard lock(mutex_);
    if (descriptor_ >= 0) ::shutdown(descriptor_, SHUT_RDWR);
  }

  std::string received() const {
    const std::lock_guard lock(mutex_);
    return received_;
  }

private:
  // Where the line, or value, at `position` ends; npos if the stream ended before.
  std::size_t endOfLine(std::size_t position) {
    std::size_t end = std::string::npos;
    while ((end = received_.find("\r\n", position)) == std::string::npos)
      if (!receiveMore(0)) return end;
    return end + 2;
  }

  std::size_t endOfValue(std::size_t position) {
    std::size_t end = endOfLine(position);
    const char type = end == std::string::npos ? '\0' : received_[position];
    if (type != '$' && type != '*') return end;
    const long count = std::stol(received_.substr(position + 1, end - position - 3));
    for (long i = 0; type == '*' && i < count && end != std::string::npos; ++i)
      end = endOfValue(end);
    if (type == '*' || count < 0) return end;
    end += static_cast<std::size_t>(count) + 2;
    while (received_.size() < end)
      if (!receiveMore(0)) return std::string::npos;
    return end;
  }

  bool receiveMore(int flags) {
    std::array<char, 65536> part;
    const ssize_t size = ::recv(descriptor_, part.data(), part.size(), flags);
    if (size <= 0) return false;
    const std::lock_guard lock(mutex_);
    received_.append(part.data(), static_cast<std::size_t>(size));
    return true;
  }

  // The lock guards what other threads may reach: the descriptor and the bytes as they grow.
  mutable std::mutex mutex_;
  int descriptor_;
  std::string received_;
  std::size_t consumed_ = 0;
};

// The plainest client, to set up and check a server with. Every failure throws std::runtime_error.
class RespClient final {
public:
  explicit RespClient(int port) : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), peer_(descriptor_) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    require(::connect(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, "No server listens");
  }

  // The raw reply, whole.
  std::string command(const std::vector<std::string>& words) {
    require(peer_.send(encodedRequest(words)), "The server took no request");
    std::string reply = peer_.read();
    require(!reply.empty(), "The server's reply broke off");
    return reply;
  }

  // Throws if one of the replies is an error.
  void commands(const std::vector<std::vector<std::string>>& requests) {
    for (const auto& words : requests) {
      const std::string answer = command(words);
      require(!answer.starts_with('-'), answer);
    }
  }

private:
  static void require(bool held, const std::string& failure) {
    if (!held) throw std::runtime_error(failure);
  }

  const int descriptor_;
  RespPeer peer_;
};

}  // namespace tarn::test
