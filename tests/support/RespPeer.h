#pragma once

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn::test {

// A request in multi-bulk form.
inline std::string encodedRequest(const std::vector<std::string>& words) {
  std::string request = "*" + std::to_string(words.size()) + "\r\n";
  for (const std::string& word : words)
    request += "$" + std::to_string(word.size()) + "\r\n" + word + "\r\n";
  return request;
}

// One end of a connection: reads whole requests or replies off it, and keeps every byte that it received. Belongs to
// one thread, but for what is said.
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
    while (!bytes.empty()) {
      const ssize_t sent = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (sent < 0 && errno == EINTR) continue;
      if (sent <= 0) return false;
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
  }

  // Ends the stream in order. Closing over unread bytes would reset the connection, and the other end might lose what
  // was sent last.
  void close() {
    if (descriptor_ < 0) return;
    ::shutdown(descriptor_, SHUT_WR);
    while (receiveMore(MSG_DONTWAIT)) {
    }
    const std::lock_guard lock(mutex_);
    ::close(std::exchange(descriptor_, -1));
  }

  // Any thread: wakes whoever reads.
  void shutDown() {
    const std::lock_guard lock(mutex_);
    if (descriptor_ >= 0) ::shutdown(descriptor_, SHUT_RDWR);
  }
  // Any thread.
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
    ssize_t size = 0;
    do {
      size = ::recv(descriptor_, part.data(), part.size(), flags);
    } while (size < 0 && errno == EINTR);
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
